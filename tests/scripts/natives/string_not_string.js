// toString and valueOf insist on a String object.
var o = new Object();
o.f = String.prototype.toString;
o.f();
// expect error: line 4: String.prototype.toString called on non-String object
