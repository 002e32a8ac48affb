// Encodes a text in UTF-7 and decodes it again through the text properties:
// writing DecodedText and reading EncodedText encodes, the other way round
// decodes. (The text properties take the encodings 0 to 5; Base58, Base32,
// Base85 and Z85 are for the data methods.)
//   cscript //nologo encode_text.js <text>
var dataEncodeUTF7 = 4;
if (WScript.Arguments.length != 1) {
  WScript.Echo("usage: encode_text.js <text>");
  WScript.Quit(2);
}
var fe = new ActiveXObject("Orvane.FileEncoder");
fe.Encoding = dataEncodeUTF7;
fe.DecodedText = WScript.Arguments(0);
var encoded = fe.EncodedText;
WScript.Echo("UTF-7: " + encoded);
fe.EncodedText = encoded;
WScript.Echo("Back:  " + fe.DecodedText);
