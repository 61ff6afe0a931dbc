// args: -define a=1 -define b=x=y -define c -define d= -define ==e==f==g -define a=2 -define = -define "" -define f='p q'
// expect: string 2
// expect: string x
// expect: string 
// expect: string 
// expect: string f
// expect: string p q
// expect: a hidden from for-in: true
var values = [a, b, c, d, e, f];
for (var i = 0; i < values.length; ++i)
    WScript.Echo(typeof values[i] + ' ' + values[i] + '\n');
var seen = false;
for (var name in this)
    if (name == 'a')
        seen = true;
WScript.Echo('a hidden from for-in: ' + !seen + '\n');
