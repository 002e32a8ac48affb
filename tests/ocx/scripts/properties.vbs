' Properties of a fresh control, the text slots and their lazy conversions.

Dim fe
Set fe = NewEncoder()

' A fresh object reads its defaults.
Check "fresh Encoding", fe.Encoding, 1
Check "fresh CodePage", fe.CodePage, 65001
Check "fresh State", fe.State, 0
Check "fresh ThrowError", fe.ThrowError, False
Check "fresh LastError", fe.LastError, 0
Check "fresh LastErrorString", fe.LastErrorString, ""
Check "fresh DecodedText", fe.DecodedText, ""
Check "fresh EncodedText", fe.EncodedText, ""
Check "fresh DecryptedText", fe.DecryptedText, ""
Check "fresh EncryptedText", fe.EncryptedText, ""
Check "fresh Password", fe.Password, ""
Check "fresh Enabled", fe.Enabled, True

' Version: four dot-separated numbers.
Dim parts
parts = Split(fe.Version, ".")
Check "Version has four parts", UBound(parts), 3
Check "Version major", parts(0), "12"
CheckTrue "Version numbers", IsNumeric(parts(1)) And IsNumeric(parts(2)) And IsNumeric(parts(3))

' Encoding accepts 0 to 9 only.
fe.Encoding = 9
Check "Encoding 9 stored", fe.Encoding, 9
On Error Resume Next
fe.Encoding = -1
Check "Encoding -1 fails", Err.Number, 380
Err.Clear
fe.Encoding = 10
Check "Encoding 10 fails", Err.Number, 380
Err.Clear
On Error GoTo 0
Check "Encoding unchanged after failures", fe.Encoding, 9

' CodePage: 0 always, others only when installed.
fe.CodePage = 0
Check "CodePage 0 accepted", fe.CodePage, 0
fe.CodePage = 1252
Check "CodePage 1252 accepted", fe.CodePage, 1252
On Error Resume Next
fe.CodePage = 12345
Check "CodePage 12345 fails", Err.Number, 380
Err.Clear
On Error GoTo 0
Check "CodePage unchanged", fe.CodePage, 1252
fe.CodePage = 65001

' Base64 through EncodedText: the converted byte count is passed as the
' output size, which the Base64 bounds always refuse, so the slot stays empty.
fe.Encoding = 1
fe.DecodedText = "Hello"
Check "EncodedText Base64 of a decoded text stays empty", fe.EncodedText, ""
Check "DecodedText kept", fe.DecodedText, "Hello"

' The same sizes let quoted-printable through only below three characters
' and URL text only without escapes. An escape's tail and the terminator
' may run past the size given, into the buffer the control owns.
fe.Encoding = 2
fe.DecodedText = "ab"
Check "EncodedText quoted-printable of two characters", fe.EncodedText, "ab"
fe.DecodedText = "="
Check "EncodedText quoted-printable of =", fe.EncodedText, "=3D"
fe.DecodedText = "@"
Check "EncodedText quoted-printable of @", fe.EncodedText, "=40"
fe.DecodedText = "a="
Check "EncodedText quoted-printable of a=", fe.EncodedText, "a=3D"
' One UTF-16 unit is passed as the length: only the first of the letter's
' two UTF-8 bytes is encoded.
fe.DecodedText = Chr(233)
Check "EncodedText quoted-printable of an accented letter", fe.EncodedText, "=C3"
fe.DecodedText = "Hello"
Check "EncodedText quoted-printable fails the capacity bound", fe.EncodedText, ""
fe.Encoding = 3
fe.DecodedText = "Hello"
Check "EncodedText URL", fe.EncodedText, "Hello"
fe.DecodedText = "a b"
Check "EncodedText URL escape does not fit", fe.EncodedText, ""

' UTF-7 and UTF-8 get the text itself. (Wine's VBScript has no ChrW;
' Chr(233) is U+00E9 in its ANSI code page.)
fe.Encoding = 4
fe.DecodedText = "Hi! 1+1"
Check "EncodedText UTF-7", fe.EncodedText, "Hi+ACE- 1+-1"
fe.Encoding = 3
Check "EncodedText read again returns the cached text, whatever Encoding says", _
  fe.EncodedText, "Hi+ACE- 1+-1"
fe.Encoding = 4
fe.Encoding = 5
fe.DecodedText = "caf" & Chr(233)
Check "EncodedText UTF-8 read back in the ANSI code page", Len(fe.EncodedText), 5

' Writing EncodedText and reading DecodedText decodes it.
fe.Encoding = 1
fe.EncodedText = "SGVsbG8="
Check "DecodedText from Base64", fe.DecodedText, "Hello"
fe.DecodedText = "other"
Check "writing DecodedText empties EncodedText", fe.EncodedText, ""
fe.Encoding = 3
fe.EncodedText = "a%20b%2Fc~"
Check "DecodedText from URL", fe.DecodedText, "a b/c~"
fe.Encoding = 4
fe.EncodedText = "Hi +AOk-1"
Check "DecodedText from UTF-7", fe.DecodedText, "Hi " & Chr(233) & "1"

' Encodings 6 to 9 are methods only for the text slots.
fe.Encoding = 7
fe.DecodedText = "x"
On Error Resume Next
Dim ignored
ignored = fe.EncodedText
Check "EncodedText with Encoding 7 fails", Err.Number, 380
Err.Clear
ignored = fe.DecodedText
Check "DecodedText with Encoding 7 keeps a cached value", Err.Number, 0
On Error GoTo 0
fe.EncodedText = "MY======="
Check "cached EncodedText returned with Encoding 7", fe.EncodedText, "MY======="

' A failing decode leaves the slot empty, silently.
fe.Encoding = 1
fe.LastError = 0
fe.EncodedText = "TW!Fu"
Check "undecodable text gives empty DecodedText", fe.DecodedText, ""
Check "undecodable text leaves LastError", fe.LastError, 0

' Password keeps embedded NULs.
fe.Password = "a" & Chr(0) & "b"
Check "Password byte for byte", Len(fe.Password), 3

Summary
