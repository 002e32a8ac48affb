' Encodes one file as yEnc, the format of binary posts on Usenet.
'   cscript //nologo encode_file.vbs <input file> <output file>
Option Explicit

Const fileEncodeYencode = 4

If WScript.Arguments.Count <> 2 Then
  WScript.Echo "usage: encode_file.vbs <input file> <output file>"
  WScript.Quit 2
End If

Dim fe, failure
Set fe = CreateObject("Orvane.FileEncoder")
' The last argument receives the error number: 0 when the call succeeded.
fe.EncodeFile WScript.Arguments(0), WScript.Arguments(1), fileEncodeYencode, failure
If failure <> 0 Then
  WScript.Echo "EncodeFile failed with error " & failure & ": " & fe.LastErrorString
  WScript.Quit 1
End If
WScript.Echo "Encoded " & WScript.Arguments(0) & " to " & WScript.Arguments(1)
