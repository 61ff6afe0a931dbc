// A line of more than 1023 characters comes in pieces, each a line: it cuts a word, and a "#" that begins it hides it.
// args: -define program={program}
// expect: 1013
// expect stderr: {program}: error: unterminated string in indirect file long(3)
var line = '-define a=';
while (line.length < 1023)
    line += 'x';
TBSys.writeStringToFile('long', line + '#z\n');
TBSys.run(program + ' @long "WScript.Echo(a.length + \'\\n\')"', false);
TBSys.writeStringToFile('long', line + '#z\n"\n');
TBSys.run(program + ' @long', false);
