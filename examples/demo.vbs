' FileEncoder demo: what the control does with text and data.
' Run it with: cscript //nologo demo.vbs   (the control must be registered)
Option Explicit

Dim fe
Set fe = CreateObject("Orvane.FileEncoder")
WScript.Echo "Orvane File Encoding Control " & fe.Version
WScript.Echo ""

' --- Encoded text ---------------------------------------------------------
' Write EncodedText and read DecodedText to decode; write DecodedText and
' read EncodedText to encode. Encoding selects the scheme.
fe.Encoding = 1   ' dataEncodeBase64
fe.EncodedText = "SGVsbG8sIFdvcmxkIQ=="
WScript.Echo "Base64 'SGVsbG8sIFdvcmxkIQ==' decodes to: " & fe.DecodedText

fe.Encoding = 4   ' dataEncodeUTF7
fe.DecodedText = "1+1=2, isn't it?"
WScript.Echo "UTF-7 of '1+1=2, isn't it?':           " & fe.EncodedText

fe.Encoding = 3   ' dataEncodeURL
fe.EncodedText = "50%25%20off%21%20Today%20only%2E"
WScript.Echo "URL '50%25%20off%21%20Today%20only%2E':   " & fe.DecodedText
WScript.Echo ""

' --- Compression ----------------------------------------------------------
Dim text, packed, length, unpacked
text = "To be, or not to be, that is the question. "
text = text & text & text & text
fe.CompressData text, packed, length
WScript.Echo "CompressData (" & Len(text) & " characters) gives " & length & _
  " characters of Base64: " & packed
fe.ExpandData packed, unpacked, length
WScript.Echo "ExpandData gives back " & length & " characters: " & unpacked
WScript.Echo ""

' --- Encryption -----------------------------------------------------------
fe.Password = "correct horse battery staple"
fe.DecryptedText = "Meet me at the usual place."
Dim cipher
cipher = fe.EncryptedText
WScript.Echo "EncryptedText: " & cipher
fe.EncryptedText = cipher
WScript.Echo "DecryptedText: " & fe.DecryptedText

Dim sealed, opened
fe.EncryptData "Data methods take strings or byte arrays.", sealed, "another password", length
fe.DecryptData sealed, opened, "another password", length
WScript.Echo "EncryptData/DecryptData round trip: " & opened
WScript.Echo ""

' --- Files ----------------------------------------------------------------
' File methods report through their Error argument; 0 means success.
Dim fso, folder, original, e
Set fso = CreateObject("Scripting.FileSystemObject")
folder = fso.GetSpecialFolder(2)
original = folder & "\fileencoder-demo.txt"
With fso.CreateTextFile(original, True)
  .Write text
  .Close
End With
fe.EncodeFile original, folder & "\fileencoder-demo.yenc", 4, e   ' fileEncodeYencode
WScript.Echo "EncodeFile to yEnc: Error " & e & ", first line: " & _
  fso.OpenTextFile(folder & "\fileencoder-demo.yenc").ReadLine
fe.CompressFile original, folder & "\fileencoder-demo.bz2", 2, 9, e   ' bzip2, level 9
WScript.Echo "CompressFile with bzip2: Error " & e & ", " & fso.GetFile(original).Size & _
  " bytes became " & fso.GetFile(folder & "\fileencoder-demo.bz2").Size
fe.ExpandFile folder & "\fileencoder-demo.bz2", folder & "\fileencoder-demo.out", 0, e   ' detect
WScript.Echo "ExpandFile with detection: Error " & e & ", same text: " & _
  (fso.OpenTextFile(folder & "\fileencoder-demo.out").ReadAll = text)
fe.EncryptFile original, folder & "\fileencoder-demo.enc", "file password", e
fe.DecryptFile folder & "\fileencoder-demo.enc", folder & "\fileencoder-demo.dec", _
  "file password", e
WScript.Echo "EncryptFile/DecryptFile: Error " & e & ", " & _
  fso.GetFile(folder & "\fileencoder-demo.enc").Size & " bytes encrypted"
fe.CompareFile original, folder & "\fileencoder-demo.dec", , , e
WScript.Echo "CompareFile of the decrypted copy: Error " & e
fe.CompareFile original, folder & "\fileencoder-demo.enc", , , e
WScript.Echo "CompareFile of the encrypted file: Error " & e & " (" & fe.LastErrorString & ")"
fe.CompressFile folder & "\no-such-file.txt", folder & "\x.z", , , e
WScript.Echo "CompressFile of a missing file: Error " & e & " (" & fe.LastErrorString & ")"
fso.DeleteFile folder & "\fileencoder-demo.*"
WScript.Echo ""

'' --- Identifiers ----------------------------------------------------------
Dim id
fe.CreateUuid7 id
WScript.Echo "CreateUuid7: " & id
fe.CreateUuid8 &H12345678, id
WScript.Echo "CreateUuid8 with a custom value: " & id
fe.CreateToken 256, 7, id
WScript.Echo "CreateToken of 256 bits in Base32: " & id
WScript.Echo ""

' --- Errors ---------------------------------------------------------------
' Failures set LastError and LastErrorString; methods report through their
' Result or Error argument too.
fe.DecryptData sealed, opened, "wrong password", length
WScript.Echo "Decrypting with a wrong password: LastError " & fe.LastError & _
  " (" & fe.LastErrorString & ")"
fe.LastError = 12350
WScript.Echo "Error 12350 reads: " & fe.LastErrorString

' Invalid property values raise a script error.
On Error Resume Next
fe.Encoding = 42
WScript.Echo "Setting Encoding = 42 raises error " & Err.Number
Err.Clear
On Error GoTo 0
