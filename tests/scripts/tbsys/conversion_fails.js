// expect error: line 3: type error: no default value
TBSys.writeStringToFile('f', 'kept');
TBSys.renameFile('f', { toString: 0, valueOf: 0 });
