' Compression and encryption of strings, and the cipher text properties.

Dim fe
Set fe = NewEncoder()
Dim text, packed, result, back, r2
text = "FileEncoder compresses this text. FileEncoder compresses this text."

' String output is the Base64 text of a level-9 zlib stream.
fe.CompressData text, packed, result
Check "compressed text starts eN", Left(packed, 2), "eN"
Check "Result is the length of the text", result, Len(packed)
fe.ExpandData packed, back, r2
Check "ExpandData gives the input back", back, text
Check "ExpandData Result is the expanded length", r2, Len(text)

' CompressBuffer and ExpandBuffer are the same methods.
Dim packed2, result2
fe.CompressBuffer text, packed2, result2
Check "CompressBuffer equals CompressData", packed2, packed
Check "CompressBuffer Result", result2, result
fe.ExpandBuffer packed2, back, r2
Check "ExpandBuffer", back, text

' One or two bytes do not fit four times their length.
fe.CompressData "a", packed, result
Check "one byte fails", result, -1
fe.CompressData "ab", packed, result
Check "two bytes fail", result, -1

' An empty input succeeds and leaves the output alone.
packed = "untouched"
result = 5
fe.CompressData "", packed, result
Check "empty input Result", result, 0
Check "empty input output untouched", packed, "untouched"

' Text that is not a zlib stream fails.
fe.ExpandData "this is not compressed", back, r2
Check "not a zlib stream", r2, -1

' EncryptData and DecryptData with the Password property or an argument.
Dim cipher, plain
fe.Password = "pass"
fe.EncryptData "Hello", cipher, , result
Check "cipher text without padding", Right(cipher, 1) <> "=", True
Check "cipher Result", result, Len(cipher)
fe.DecryptData cipher, plain, , result
Check "DecryptData with the Password property", plain, "Hello"
fe.EncryptData "Hello", cipher, "other", result
fe.DecryptData cipher, plain, "other", result
Check "DecryptData with a password argument", plain, "Hello"

' EncryptedText is one-shot.
fe.Password = "secret"
fe.DecryptedText = "Attack at dawn"
Dim first
first = fe.EncryptedText
CheckTrue "EncryptedText first read", Len(first) > 20
Check "EncryptedText second read is empty", fe.EncryptedText, ""
Check "and forgets the plain text", fe.DecryptedText, ""
fe.EncryptedText = first
Check "DecryptedText decrypts", fe.DecryptedText, "Attack at dawn"
Check "DecryptedText second read is empty", fe.DecryptedText, ""
fe.EncryptedText = first
fe.Password = "wrong"
fe.LastError = 0
Check "wrong password decrypts to nothing", fe.DecryptedText, ""
Check "wrong password recorded raw", fe.LastError, 13

Summary
