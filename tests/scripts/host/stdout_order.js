// Nothing flushes what Echo holds, so a child that inherits stdout can come first; its own lines are whole.
// stdout-contains: child
// stdout-contains: parent
WScript.Echo('parent\n');
TBSys.run('echo child', false);
