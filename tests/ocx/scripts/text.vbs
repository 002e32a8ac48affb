' The text filters and the UTF-8 methods as scripts use them. Non-ASCII
' text is built from UTF-8 bytes with Utf8ToStr: Wine's VBScript stops on
' AscW and ChrW of such characters and on UBound of a returned byte array
' (the C++ client checks the bytes).
Dim fe, r
Set fe = NewEncoder()

' A string from UTF-8 bytes written as hexadecimal text.
Function FromUtf8Hex(hexText)
  Dim i, byteText, s
  byteText = ""
  For i = 1 To Len(hexText) Step 2
    byteText = byteText & Chr(CLng("&H" & Mid(hexText, i, 2)))
  Next
  fe.Utf8ToStr byteText, s
  FromUtf8Hex = s
End Function

fe.FilterHtml "<p>Hello</p><p>World</p>", r
Check "FilterHtml paragraphs", r, "Hello" & vbCrLf & vbCrLf & "World"
fe.FilterHtml "<ol><li>a</li><li>b</li></ol>", r
Check "FilterHtml ordered list", r, vbCrLf & "1. a" & vbCrLf & "2. b"
fe.FilterHtml "<a href=""HTTP://Joe:pw@Example.COM/x"">Link</a>", r
Check "FilterHtml link without the user part", r, "<http://example.com/x> Link"
fe.FilterHtml "Smith & Sons", r
Check "FilterHtml lone ampersand", r, "Smith"
fe.FilterHtml "&Alpha;&#x41;", r
Check "FilterHtml references: two characters", Len(r), 2
Check "FilterHtml references: A from &#x41;", Right(r, 1), "A"

fe.FilterMarkdown "## Title" & vbLf & vbLf & vbLf & vbLf & "1) snake_case **bold**", r
Check "FilterMarkdown", r, "Title" & vbLf & vbLf & "1. snake_case bold"
fe.FilterMarkdown "[site](https://example.com) [page](page.md)", r
Check "FilterMarkdown links", r, "site (https://example.com) page"

fe.FilterUnicode FromUtf8Hex("D0B0") & "pple" & vbTab & FromUtf8Hex("C3A9"), r
Check "FilterUnicode", r, "applee"
fe.IsConfusable "plain", r
Check "IsConfusable ASCII", r, False
fe.IsConfusable FromUtf8Hex("EFBBBF") & "plain", r
Check "IsConfusable byte-order mark", r, True

Summary
