' The file methods: encoding, decoding, compression and expansion of files.
Dim fe, fso, folder, source, text
Set fe = NewEncoder()
Set fso = CreateObject("Scripting.FileSystemObject")
folder = fso.GetSpecialFolder(2) & "\fe_script_files"
If Not fso.FolderExists(folder) Then fso.CreateFolder folder
source = folder & "\source.txt"
text = "The quick brown fox jumps over the lazy dog. The quick brown fox jumps again."

WriteText source, text

' EncodeFile with the Encoding property as the default.
Dim e
fe.Encoding = 4   ' fileEncodeYencode
fe.EncodeFile source, folder & "\source.yenc", , e
Check "EncodeFile Error", e, 0
Check "yEnc header", Left(ReadText(folder & "\source.yenc"), 8), "=ybegin "
fe.DecodeFile folder & "\source.yenc", folder & "\back.txt", , e
Check "DecodeFile Error", e, 0
Check "DecodeFile gives the text back", ReadText(folder & "\back.txt"), text

' An explicit encoding wins over the property.
fe.EncodeFile source, folder & "\source.uu", 3, e
Check "uuencode header", Left(ReadText(folder & "\source.uu"), 21), "begin 644 source.txt" & vbCr
fe.DecodeFile folder & "\source.uu", folder & "\back2.txt", 3, e
Check "uudecode", ReadText(folder & "\back2.txt"), text

' Compression with the defaults (Deflate, default level) and back.
fe.CompressFile source, folder & "\source.z", , , e
Check "CompressFile Error", e, 0
fe.ExpandFile folder & "\source.z", folder & "\back3.txt", , e
Check "ExpandFile Error", e, 0
Check "ExpandFile gives the text back", ReadText(folder & "\back3.txt"), text

' ExpandFile without a type means Deflate: a bzip2 file needs 0 or 2. The
' stream's failure records no code of its own (as ever), but no output is
' left behind.
fe.CompressFile source, folder & "\source.bz2", 2, 9, e
fe.ExpandFile folder & "\source.bz2", folder & "\back4.txt", , e
Check "bzip2 read as Deflate leaves no output", ReadText(folder & "\back4.txt"), "<missing>"
fe.ExpandFile folder & "\source.bz2", folder & "\back4.txt", 0, e
Check "bzip2 detected", ReadText(folder & "\back4.txt"), text

' A missing input: Error and LastError 2, and with ThrowError no exception
' (a system code is returned as a success code).
fe.CompressFile folder & "\missing.txt", folder & "\out.z", , , e
Check "missing input Error", e, 2
Check "missing input LastError", fe.LastError, 2
fe.ThrowError = True
On Error Resume Next
fe.CompressFile folder & "\missing.txt", folder & "\out.z", , , e
Check "missing input raises nothing", Err.Number, 0
Err.Clear
' A control code does raise: compressing with type 0.
fe.CompressFile source, folder & "\out.z", 0, , e
Check "type 0 raises 10014", Err.Number, 10014
Check "type 0 error source", Err.Source, "Orvane.FileEncoder.12"
Check "type 0 error text", Err.Description, "Invalid argument passed to function"
Err.Clear
On Error GoTo 0
fe.ThrowError = False
Check "type 0 Error", e, 10014
Check "State is idle after the work", fe.State, 0

' Negative numbers held in variables reach the control by reference and are
' folded like direct ones: -1 is 65535, not a word with bit 16 set.
Function TemporaryFileCount()
  Dim f
  TemporaryFileCount = 0
  For Each f In fso.GetFolder(fso.GetSpecialFolder(2)).Files
    If Left(f.Name, 2) = "~r" Then TemporaryFileCount = TemporaryFileCount + 1
  Next
End Function
Dim minusOne, before
minusOne = -1
before = TemporaryFileCount()
fe.DecodeFile folder & "\source.yenc", folder & "\back5.txt", minusOne, e
Check "by-reference -1 as Encoding leaves no temporary file", TemporaryFileCount(), before
Check "by-reference -1 as Encoding decodes nothing", ReadText(folder & "\back5.txt"), "<missing>"
fe.EncodeFile source, folder & "\out5.txt", minusOne, e
Check "by-reference -1 as Encoding encodes nothing", ReadText(folder & "\out5.txt"), "<missing>"
Check "no temporary file after encoding either", TemporaryFileCount(), before
fe.CompressFile source, folder & "\level9.z", 1, 9, e
fe.CompressFile source, folder & "\levelMinus1.z", 1, minusOne, e
Check "by-reference -1 as level is level 9", e, 0
Check "level 65535 compresses as level 9", fso.GetFile(folder & "\levelMinus1.z").Size, _
  fso.GetFile(folder & "\level9.z").Size
fe.CompressFile source, folder & "\type.z", minusOne, , e
Check "by-reference -1 as type writes nothing", ReadText(folder & "\type.z"), "<missing>"
fe.ExpandFile folder & "\source.z", folder & "\type.txt", minusOne, e
Check "by-reference -1 as expansion type writes nothing", ReadText(folder & "\type.txt"), "<missing>"
Dim minusForty
minusForty = -40000
fe.EncodeFile source, folder & "\out6.txt", minusForty, e
Check "by-reference -40000 is no encoding", ReadText(folder & "\out6.txt"), "<missing>"

fso.DeleteFolder folder, True
Summary
