' Decodes a multi-part yEnc set. The control reads all parts from one file,
' in order, so the parts are joined first.
'   cscript //nologo decode_yenc_parts.vbs <output file> <part 1> <part 2> ...
Option Explicit

Const fileDecodeYencode = 4
Const ForReading = 1

If WScript.Arguments.Count < 2 Then
  WScript.Echo "usage: decode_yenc_parts.vbs <output file> <part 1> <part 2> ..."
  WScript.Quit 2
End If

Dim fso, joined, writer, reader, i
Set fso = CreateObject("Scripting.FileSystemObject")
joined = fso.BuildPath(fso.GetSpecialFolder(2), fso.GetTempName())
' yEnc parts are 8-bit text: read and write them as they are.
Set writer = fso.CreateTextFile(joined, True, False)
For i = 1 To WScript.Arguments.Count - 1
  Set reader = fso.OpenTextFile(WScript.Arguments(i), ForReading, False, 0)
  If Not reader.AtEndOfStream Then writer.Write reader.ReadAll
  reader.Close
Next
writer.Close

Dim fe, failure
Set fe = CreateObject("Orvane.FileEncoder")
failure = 0
fe.DecodeFile joined, WScript.Arguments(0), fileDecodeYencode, failure
fso.DeleteFile joined
If failure <> 0 Then
  WScript.Echo "DecodeFile failed with error " & failure & ": " & fe.LastErrorString
  WScript.Quit 1
End If
' A size or CRC mismatch is no system error, so it comes back as error 0;
' but the control then deletes its output. A file that exists is complete.
If Not fso.FileExists(WScript.Arguments(0)) Then
  WScript.Echo "The parts do not match their sizes or checksums: nothing decoded"
  WScript.Quit 1
End If
WScript.Echo "Decoded " & (WScript.Arguments.Count - 1) & " parts into " & WScript.Arguments(0)
