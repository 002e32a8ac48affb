// What differs in JScript: by-reference arguments are not written back, and
// failures arrive as exceptions with the number and description.
var passed = 0, failed = 0;
function check(name, actual, expected) {
  if (actual === expected) { passed++; }
  else { failed++; WScript.Echo("FAILED " + name + ": got [" + actual + "], expected [" + expected + "]"); }
}

var fe = new ActiveXObject("Orvane.FileEncoder");
check("Encoding", fe.Encoding, 1);
check("CodePage", fe.CodePage, 65001);
check("ThrowError", fe.ThrowError, false);

var out = "before";
fe.CompressData("JScript JScript JScript JScript", out);
check("out-arguments are not written back", out, "before");

fe.LastError = 10014;
check("LastErrorString", fe.LastErrorString, "Invalid argument passed to function");

try {
  fe.Encoding = 42;
  check("Encoding 42 throws", true, false);
} catch (e) {
  check("invalid property value number", e.number, 0x800A017C - 0x100000000);
}

// Wine's VBScript has no ChrW: Unicode text is tested here.
fe.Encoding = 4;
fe.DecodedText = "Hi " + String.fromCharCode(163) + "1";
check("UTF-7 of a pound sign", fe.EncodedText, "Hi +AKM-1");
fe.EncodedText = "+ZeVnLIqe-";
check("UTF-7 decoded", fe.DecodedText, String.fromCharCode(0x65e5, 0x672c, 0x8a9e));

fe.Password = "js";
fe.DecryptedText = "from JScript";
var cipher = fe.EncryptedText;
fe.EncryptedText = cipher;
check("cipher text round trip", fe.DecryptedText, "from JScript");

WScript.Echo(passed + " passed, " + failed + " failed");
WScript.Quit(failed);
