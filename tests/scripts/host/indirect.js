// args-only: @words
// file: words
//| # a comment
//| -define "n=a b" @more
//| "WScript.Echo(n + ' ')"WScript.Echo(m)
//|   
//| -load "the file.js"
// file-raw: more "-define m=1\n-verbose"
// file: the file.js
//| WScript.Echo('the file\n');
// expect: defining: n=a b
// expect: defining: m=1
// expect: loading: the file.js
// expect: the file
// expect: executing: WScript.Echo(n + ' ')
// expect: WScript.Echo(m)
// expect-raw: "a b 1"
