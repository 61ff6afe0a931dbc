// Date makes objects; as a function it does nothing.
Date();
// expect error: line 2: bad signature in builtin call
