' The text filters and the UTF-8 methods as scripts use them.
Dim fe, r, bytes
Set fe = NewEncoder()

fe.FilterHtml "<p>Hello</p><p>World</p>", r
Check "FilterHtml paragraphs", r, "Hello" & vbCrLf & vbCrLf & "World"
fe.FilterHtml "<ol><li>a</li><li>b</li></ol>", r
Check "FilterHtml ordered list", r, vbCrLf & "1. a" & vbCrLf & "2. b"
fe.FilterHtml "<a href=""HTTP://Joe:pw@Example.COM/x"">Link</a>", r
Check "FilterHtml link without the user part", r, "<http://example.com/x> Link"
fe.FilterHtml "Smith & Sons", r
Check "FilterHtml lone ampersand", r, "Smith"
fe.FilterHtml "&Alpha;&#x41;", r
Check "FilterHtml references", r, ChrW(&H3B1) & "A"

fe.FilterMarkdown "## Title" & vbLf & vbLf & vbLf & vbLf & "1) snake_case **bold**", r
Check "FilterMarkdown", r, "Title" & vbLf & vbLf & "1. snake_case bold"
fe.FilterMarkdown "[site](https://example.com) [page](page.md)", r
Check "FilterMarkdown links", r, "site (https://example.com) page"

fe.FilterUnicode ChrW(&H430) & "pple" & vbTab & ChrW(&HE9), r
Check "FilterUnicode", r, "applee"
fe.IsConfusable "plain", r
Check "IsConfusable ASCII", r, False
fe.IsConfusable ChrW(&HFEFF) & "plain", r
Check "IsConfusable byte-order mark", r, True

fe.StrToUtf8 ChrW(&HE9), bytes
Check "StrToUtf8 size", UBound(bytes) + 1, 2
fe.IsValidUtf8 bytes, r
Check "IsValidUtf8 of StrToUtf8", r, True
fe.Utf8ToStr ChrW(&HC3) & ChrW(&HA9), r
Check "Utf8ToStr of byte-valued characters", r, ChrW(&HE9)

Summary
