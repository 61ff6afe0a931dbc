// Neither Math nor its members are constructors.
var f = Math.sin;
new f(1);
// expect error: line 3: new must be given a constructor object
