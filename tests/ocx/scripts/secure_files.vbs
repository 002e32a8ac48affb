' File encryption, file comparison and digests, tokens and UUIDs as scripts
' use them.
Dim fe, fso, folder, e, r
Set fe = NewEncoder()
Set fso = CreateObject("Scripting.FileSystemObject")
folder = fso.GetSpecialFolder(2) & "\fe_script_secure"
If Not fso.FolderExists(folder) Then fso.CreateFolder folder

Dim plain, cipher, back, text, i
plain = folder & "\plain.txt"
cipher = folder & "\plain.enc"
back = folder & "\back.txt"
text = ""
For i = 1 To 500
  text = text & "line" & Right("0000" & i, 4) & vbCrLf   ' 10 characters each
Next
WriteText plain, text

' EncryptFile with the Password property as the default.
fe.Password = "script password"
fe.EncryptFile plain, cipher, , e
Check "EncryptFile Error", e, 0
Check "5000 bytes encrypt to 5008", fso.GetFile(cipher).Size, 5008
Check "State is idle afterwards", fe.State, 0
fe.DecryptFile cipher, back, , e
Check "DecryptFile Error", e, 0
Check "DecryptFile gives the text back", ReadText(back), text

' A wrong password leaves the output as it was and reports 13.
WriteText back, "keep me"
fe.DecryptFile cipher, back, "not the password", e
Check "wrong password Error", e, 13
Check "wrong password LastError", fe.LastError, 13
Check "wrong password keeps the output", ReadText(back), "keep me"

' Encrypting a file onto itself replaces it; decrypting it brings it back.
fe.EncryptFile plain, plain, "self", e
Check "in place Error", e, 0
Check "in place size", fso.GetFile(plain).Size, 5008
fe.DecryptFile plain, plain, "self", e
Check "in place back", ReadText(plain), text

' A read-only output is refused with 5.
WriteText back, "read only"
fso.GetFile(back).Attributes = 1
fe.EncryptFile plain, back, , e
Check "read-only output Error", e, 5
Check "read-only output kept", ReadText(back), "read only"
fso.GetFile(back).Attributes = 0

' A missing input reports 2.
fe.EncryptFile folder & "\missing.txt", back, , e
Check "missing input Error", e, 2

' CompareFile: "abc" and its digests.
Dim abc, copy, other, longer
abc = folder & "\abc.txt"
copy = folder & "\copy.txt"
other = folder & "\other.txt"
longer = folder & "\longer.txt"
WriteText abc, "abc"
WriteText copy, "abc"
WriteText other, "abd"
WriteText longer, "abcd"
Const sha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"
fe.CompareFile abc, copy, , , e
Check "copies compare equal", e, 0
fe.CompareFile abc, UCase(abc), , , e
Check "a file with itself in another case", e, 0
fe.CompareFile abc, other, , , e
Check "different bytes", e, 12498
fe.CompareFile abc, longer, 4, , e
Check "different sizes whatever the options", e, 12351
fe.CompareFile abc, , , sha256, e
Check "lowercase SHA-256 digest", e, 0
fe.CompareFile abc, , , "0x" & UCase(sha256), e
Check "digest with 0x prefix", e, 0
fe.CompareFile abc, , , Left(sha256, 63), e
Check "63 digits", e, 12495
fe.CompareFile abc, , 256, "a9993e364706816aba3e25717850c26c9cd0d89d", e
Check "MD5 asked with 40 digits", e, 12495
fe.CompareFile abc, , 256 + 1024, sha256, e
Check "MD5 and SHA-256 use SHA-256", e, 0
fe.CompareFile abc, , 256, "900150983cd24fb0d6963f7d28e17f72", e
Check "MD5 digest", e, 0
fe.CompareFile abc, , , , e
Check "one file without a digest", e, 12496
fe.CompareFile abc, , 1, , e
Check "one file with fileCompareContents", e, 10008
Check "LastError holds the first failing check", fe.LastError, 10008
fe.CompareFile abc, other, , sha256, e
Check "same size and a matching digest", e, 0
fe.CompareFile folder & "\missing.txt", abc, , , e
Check "missing first file", e, 10002

' With ThrowError on, a failed check raises its number.
fe.ThrowError = True
On Error Resume Next
fe.CompareFile abc, other, , , e
Check "ThrowError raises the mismatch", Err.Number, 12498
Err.Clear
On Error GoTo 0
fe.ThrowError = False

' Tokens.
fe.CreateToken , , r
CheckTrue "default token is Base58 of 16 bytes", Len(r) >= 16 And Len(r) <= 22
fe.CreateToken 256, 1, r
Check "256-bit Base64 token", Len(r), 43
Check "no padding", InStr(r, "="), 0
fe.CreateToken 128, 7, r
Check "128-bit Base32 token", Len(r), 26
Check "Base32 token in lowercase", LCase(r), r
fe.CreateToken 4096, 1, r
Check "4096-bit Base64 token is one line", Len(r), 683
fe.CreateToken 1, 8, r
Check "64-bit Base85 token", Len(r), 10
fe.LastError = 0
fe.CreateToken 0, 2, r
Check "encoding 2 is refused", fe.LastError, 10014
Check "refused token is empty", r, ""

' UUIDs.
Dim u, v
fe.CreateUuid7 u
Check "v7 length", Len(u), 36
Check "v7 version group", Mid(u, 15, 3), "700"
CheckTrue "v7 variant", InStr("89ab", Mid(u, 20, 1)) > 0
Check "v7 lowercase", LCase(u), u
fe.CreateUuid7 v
CheckTrue "v7 differ", u <> v
CheckTrue "v7 time-ordered", Left(v, 13) >= Left(u, 13)
fe.CreateUuid8 &H12345678, u
Check "v8 custom value", Left(u, 9), "12345678-"
Check "v8 version", Mid(u, 15, 1), "8"
fe.CreateUuid8 -1, u
Check "v8 of -1", Left(u, 8), "ffffffff"
fe.CreateUuid8 "", u
Check "v8 of an empty value", Len(u), 36
Check "v8 of an empty value is version 8", Mid(u, 15, 1), "8"

fso.DeleteFolder folder, True
Summary
