' LastError, LastErrorString and ThrowError as scripts see them.

Dim fe
Set fe = NewEncoder()

fe.LastError = 10014
Check "LastError 10014 reads back", fe.LastError, 10014
Check "LastErrorString of 10014", fe.LastErrorString, "Invalid argument passed to function"

fe.LastError = 70000
Check "LastError 70000 reads its low 16 bits", fe.LastError, 4464
Check "LastError 70000 is stored as is", fe.LastErrorString, "Undefined control error (0x00011170)"
fe.LastError = 65536
Check "LastError 65536 is stored as is", fe.LastErrorString, "Undefined control error (0x00010000)"
fe.LastError = 65535
Check "LastError 65535 is widened", fe.LastErrorString, "Undefined control error (0x8004FFFF)"

fe.LastError = 0
Check "LastError 0 gives an empty string", fe.LastErrorString, ""

fe.LastError = 10000
Check "LastError 10000 reads No error", fe.LastErrorString, "No error"

fe.LastError = 10025
Check "a gap in the enumeration is undefined", fe.LastErrorString, _
  "Undefined control error (0x80042729)"

fe.LastError = 12350
Check "LastErrorString of 12350", fe.LastErrorString, "The specified file checksums do not match"

' ThrowError reads -1 for true.
fe.ThrowError = True
Check "ThrowError true", fe.ThrowError, True
Check "ThrowError true is -1", CInt(fe.ThrowError), -1
fe.ThrowError = 0
Check "ThrowError false", fe.ThrowError, False

' A failing method with ThrowError off: success, Result and LastError set.
Dim out, result
fe.Password = "right"
fe.EncryptData "a secret", out, , result
Check "EncryptData result length", result, 22
Dim plain, r2
fe.ThrowError = False
fe.DecryptData out, plain, "wrong", r2
Check "wrong password: no output", r2, 0
Check "wrong password: LastError is invalid data", fe.LastError, 13
CheckTrue "wrong password: LastErrorString set", Len(fe.LastErrorString) > 0

' With ThrowError on, a platform code is returned as a success code: no
' error reaches the script.
fe.ThrowError = True
On Error Resume Next
fe.DecryptData out, plain, "wrong", r2
Check "platform code does not raise", Err.Number, 0
Err.Clear
On Error GoTo 0
fe.ThrowError = False

' A successful method does not clear LastError.
fe.DecryptData out, plain, "right", r2
Check "right password decrypts", plain, "a secret"
Check "success keeps the previous LastError", fe.LastError, 13

' Invalid property values fail without touching LastError.
fe.LastError = 10014
On Error Resume Next
fe.Encoding = 99
Check "invalid Encoding raises 380", Err.Number, 380
Err.Clear
On Error GoTo 0
Check "invalid Encoding leaves LastError", fe.LastError, 10014

' Reset before Initialize changes nothing; after it, the defaults return.
fe.Encoding = 5
fe.Reset
Check "Reset before Initialize keeps Encoding", fe.Encoding, 5
Check "Reset before Initialize keeps LastError", fe.LastError, 10014
Dim e
fe.Initialize , e
Check "Initialize Error", e, 0
fe.CodePage = 1252
fe.ThrowError = True
fe.Reset
Check "Reset restores Encoding", fe.Encoding, 1
Check "Reset clears LastError", fe.LastError, 0
Check "Reset keeps CodePage", fe.CodePage, 1252
Check "Reset keeps ThrowError", fe.ThrowError, True
fe.Encoding = 6
fe.Uninitialize
Check "Uninitialize resets", fe.Encoding, 1
fe.Encoding = 6
fe.Reset
Check "Reset after Uninitialize does nothing", fe.Encoding, 6

Summary
