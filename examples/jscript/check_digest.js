// Checks a file against a published SHA-256 digest (64 hexadecimal digits,
// in either case).
//   cscript //nologo check_digest.js <file> <digest>
var fileCompareSHA256 = 1024;
var args = WScript.Arguments;
if (args.length != 2) {
  WScript.Echo("usage: check_digest.js <file> <digest>");
  WScript.Quit(2);
}
var fe = new ActiveXObject("Orvane.FileEncoder");
// JScript cannot leave out an argument in the middle: an empty second file
// name means "no second file". JScript does not receive values through
// by-reference arguments either, so the outcome is read from LastError: 0
// when the digest matches.
fe.CompareFile(args(0), "", fileCompareSHA256, args(1));
if (fe.LastError == 0) {
  WScript.Echo(args(0) + ": OK");
} else {
  WScript.Echo(args(0) + ": " + fe.LastErrorString + " (" + fe.LastError + ")");
  WScript.Quit(1);
}
