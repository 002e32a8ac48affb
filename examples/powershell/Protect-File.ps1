<#
.SYNOPSIS
  Compresses a file with LZMA and encrypts it with a password, through the
  FileEncoder control; then checks the result by decrypting and expanding it
  again into a temporary file and comparing.
.EXAMPLE
  .\Protect-File.ps1 -Path report.pdf -Destination report.pdf.lzma.aes
  The password is asked for without echo.
.NOTES
  The bitness of PowerShell decides which control it loads: 64-bit
  PowerShell needs the x64 control, "Windows PowerShell (x86)" the x86 one.
#>
param(
  [Parameter(Mandatory)] [string] $Path,
  [Parameter(Mandatory)] [string] $Destination,
  [Parameter(Mandatory)] [securestring] $Password
)
$ErrorActionPreference = 'Stop'
$fe = New-Object -ComObject Orvane.FileEncoder
$fe.Password = [System.Net.NetworkCredential]::new('', $Password).Password
# Each call's last argument receives 0 or the error number. (ThrowError
# would raise only the control's own codes, not system errors such as 5.)
$failure = 0
function Assert-Done([string] $step) {
  if ($failure -ne 0) { throw "$step failed: $($fe.LastErrorString) ($failure)" }
}

$source = (Resolve-Path $Path).Path
$packed = [System.IO.Path]::GetTempFileName()
$check = [System.IO.Path]::GetTempFileName()
$unpacked = [System.IO.Path]::GetTempFileName()
try {
  $fe.CompressFile($source, $packed, 3, 6, [ref] $failure)   # 3 = fileCompressionLzma, level 6
  Assert-Done 'CompressFile'
  $fe.EncryptFile($packed, $Destination, [Type]::Missing, [ref] $failure)
  Assert-Done 'EncryptFile'
  # Round trip: decrypt, expand (the method is detected from the data), compare.
  $fe.DecryptFile($Destination, $check, [Type]::Missing, [ref] $failure)
  Assert-Done 'DecryptFile'
  $fe.ExpandFile($check, $unpacked, 0, [ref] $failure)
  Assert-Done 'ExpandFile'
  $fe.CompareFile($source, $unpacked, 1, [Type]::Missing, [ref] $failure)   # 1 = fileCompareContents
  Assert-Done 'CompareFile'
  Write-Output "$Path -> $Destination (checked)"
}
finally {
  Remove-Item -ErrorAction SilentlyContinue $packed, $check, $unpacked
  $fe.Password = ''
}
