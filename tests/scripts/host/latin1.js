// Bytes above 127 pass through unchanged: command line, names of files, script text, output.
// args-only: -define word=grün -load größe.js
// file-raw: größe.js "WScript.Echo(word + ' ' + word.length + ' \xe9 ' + '\xe9'.length + ' \xc3\xa9 ' + '\xc3\xa9'.length);"
// expect-raw: "gr\xc3\xbcn 5 \xe9 1 \xc3\xa9 2"
