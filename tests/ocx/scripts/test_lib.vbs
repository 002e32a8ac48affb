' Assertions shared by the VBScript suites. Wine's VBScript has no
' ExecuteGlobal, so the runner puts this file in front of each suite.
' Each suite ends with Summary, which prints "N passed, N failed" and quits
' with the number of failures (cscript under Wine exits 0 on an uncaught
' error, so the runner also insists on that line).
Dim passed, failed
passed = 0
failed = 0

' Numbers compare by value whatever their width; everything else must also
' be of the same type.
Function SameValue(actual, expected)
  Dim numeric
  numeric = "Integer Long Byte Double Single Currency"
  If InStr(numeric, TypeName(actual)) > 0 And InStr(numeric, TypeName(expected)) > 0 Then
    SameValue = (actual = expected)
  ElseIf TypeName(actual) = TypeName(expected) Then
    SameValue = (actual = expected)
  Else
    SameValue = False
  End If
End Function

Sub Check(name, actual, expected)
  If SameValue(actual, expected) Then
    passed = passed + 1
  Else
    failed = failed + 1
    WScript.Echo "FAILED " & name & ": got [" & actual & "] (" & TypeName(actual) & _
      "), expected [" & expected & "] (" & TypeName(expected) & ")"
  End If
End Sub

Sub CheckTrue(name, condition)
  Check name, CBool(condition), True
End Sub

Sub Summary()
  WScript.Echo passed & " passed, " & failed & " failed"
  WScript.Quit failed
End Sub

' Writes a text file (clearing a read-only attribute first) and reads one
' back ("<missing>" when it does not exist).
Sub WriteText(path, content)
  Dim files, stream
  Set files = CreateObject("Scripting.FileSystemObject")
  If files.FileExists(path) Then files.GetFile(path).Attributes = 0
  Set stream = files.CreateTextFile(path, True)
  stream.Write content
  stream.Close
End Sub

Function ReadText(path)
  Dim files
  Set files = CreateObject("Scripting.FileSystemObject")
  If files.FileExists(path) Then
    ReadText = files.OpenTextFile(path).ReadAll
  Else
    ReadText = "<missing>"
  End If
End Function

Function NewEncoder()
  Set NewEncoder = CreateObject("Orvane.FileEncoder")
End Function
