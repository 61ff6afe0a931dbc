// Bytes above 127 pass through unchanged: command line, names of files, script text, output.
// args: -define program={program} -define outer=grün
// expect: grün 5 é 2 233
// expect: grün 5 é 2 233
// expect-raw: "\xe9?"
var text = "WScript.Echo(word + ' ' + word.length + ' ' + '\\xc3\\xa9' + ' 2 ' + '\\xe9'.charCodeAt(0) + '\\n');";
TBSys.writeStringToFile('größe.js', text);
TBSys.run(program + ' -define word=' + outer + ' -load größe.js', false);
TBSys.run('sh -c "printf %s \\"-load größe.js\\" > liste-ä"', false);
TBSys.run(program + ' -define word=grün @liste-ä', false);
WScript.Echo('\xe9\u20ac');
