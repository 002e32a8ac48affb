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

Function NewEncoder()
  Set NewEncoder = CreateObject("Orvane.FileEncoder")
End Function
