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
# Failures become exceptions carrying the control's error number.
$fe.ThrowError = $true
$fe.Password = [System.Net.NetworkCredential]::new('', $Password).Password

$source = (Resolve-Path $Path).Path
$packed = [System.IO.Path]::GetTempFileName()
$check = [System.IO.Path]::GetTempFileName()
$unpacked = [System.IO.Path]::GetTempFileName()
try {
  $fe.CompressFile($source, $packed, 3, 6)   # 3 = fileCompressionLzma, level 6
  $fe.EncryptFile($packed, $Destination)
  # Round trip: decrypt, expand (the method is detected from the data), compare.
  $fe.DecryptFile($Destination, $check)
  $fe.ExpandFile($check, $unpacked, 0)
  $fe.CompareFile($source, $unpacked, 1)     # 1 = fileCompareContents
  Write-Output "$Path -> $Destination (checked)"
}
finally {
  Remove-Item -ErrorAction SilentlyContinue $packed, $check, $unpacked
  $fe.Password = ''
}
