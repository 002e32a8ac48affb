Attribute VB_Name = "FileEncoderSamples"
' FileEncoder from Office VBA. Import this module (File > Import File) into a
' workbook or document. 32-bit Office loads only the x86 control, 64-bit
' Office only the x64 one: install the package that matches Office.
' Late binding needs no reference; for early binding add a reference to
' "Orvane File Encoding Control 12.0" and declare "As FileEncoderCtl.FileEncoder".
Option Explicit

Private Const fileCompressionDeflate As Long = 1
Private Const fileCompareSHA256 As Long = 1024

' Compresses a file with Deflate at level 9; returns 0 or the error number.
Public Function CompressWorkbookCopy(ByVal source As String, ByVal target As String) As Long
    Dim fe As Object, failure As Variant
    Set fe = CreateObject("Orvane.FileEncoder")
    fe.CompressFile source, target, fileCompressionDeflate, 9, failure
    CompressWorkbookCopy = failure
End Function

' Encrypts a text for storing in a cell; the result is Base64 text.
Public Function SealText(ByVal plain As String, ByVal password As String) As String
    Dim fe As Object, sealed As Variant, length As Variant
    Set fe = CreateObject("Orvane.FileEncoder")
    fe.EncryptData plain, sealed, password, length
    If length < 0 Then Err.Raise vbObjectError + 1, , fe.LastErrorString
    SealText = sealed
End Function

' The SHA-256 digest check of a downloaded file, as a worksheet function:
' =DigestMatches("C:\Downloads\setup.exe", "9F86D0...")
Public Function DigestMatches(ByVal path As String, ByVal digest As String) As Boolean
    Dim fe As Object, failure As Variant
    Set fe = CreateObject("Orvane.FileEncoder")
    fe.CompareFile path, , fileCompareSHA256, digest, failure
    DigestMatches = (failure = 0)
End Function

' Writes a version 7 UUID (time-ordered) into the active cell.
Public Sub InsertUuid()
    Dim fe As Object, uuid As Variant
    Set fe = CreateObject("Orvane.FileEncoder")
    fe.CreateUuid7 uuid
    ActiveCell.Value = uuid
End Sub
