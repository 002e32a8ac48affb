' Compresses (LZMA) and then encrypts every file of a folder, writing
' <name>.lzma.aes beside each; the originals stay as they are.
'   cscript //nologo protect_folder.vbs <folder> <password>
Option Explicit

Const fileCompressionLzma = 3

If WScript.Arguments.Count <> 2 Then
  WScript.Echo "usage: protect_folder.vbs <folder> <password>"
  WScript.Quit 2
End If

Dim fso, fe, file, packed, count, failure
Set fso = CreateObject("Scripting.FileSystemObject")
Set fe = CreateObject("Orvane.FileEncoder")
fe.Password = WScript.Arguments(1)
count = 0
For Each file In fso.GetFolder(WScript.Arguments(0)).Files
  If LCase(Right(file.Name, 9)) <> ".lzma.aes" Then
    packed = fso.BuildPath(fso.GetSpecialFolder(2), fso.GetTempName())
    ' The last argument receives 0 or the error number. (ThrowError would
    ' raise only the control's own codes, not system errors such as 32, a
    ' file in use: checking the argument catches both.)
    fe.CompressFile file.Path, packed, fileCompressionLzma, 6, failure
    If failure = 0 Then fe.EncryptFile packed, file.Path & ".lzma.aes", , failure
    If failure <> 0 Then
      WScript.Echo file.Name & ": " & fe.LastErrorString & " (" & failure & ")"
    Else
      WScript.Echo file.Name & " -> " & file.Name & ".lzma.aes"
      count = count + 1
    End If
    If fso.FileExists(packed) Then fso.DeleteFile packed
  End If
Next
WScript.Echo count & " files protected"
