// All errors are told, and nothing runs.
// args-only: "WScript.Echo('ran')" -bogus -- @{dir}/missing @{dir}/words @/dev/zero @. @a @a -load {script} -define
// file: words
//| -verbos "open
//| -load
//|  # "no comment" -x
// file: a
//| @b @b @b @b @b @b @b @b @b @b @b @b @b @b @b @b
// file: b
//| @c @c @c @c @c @c @c @c @c @c @c @c @c @c @c @c
// file: c
//| @d @d @d @d @d @d @d @d @d @d @d @d @d @d @d @d
// file: d
//| @e @e @e @e @e @e @e @e @e @e @e @e @e @e @e @e
// file: e
// expect stderr: {program}: error: unrecognised option -bogus
// expect stderr: {program}: error: unrecognised option --
// expect stderr: {program}: error: can't open indirect file {dir}/missing: No such file or directory
// expect stderr: {program}: error: unterminated string in indirect file {dir}/words(1)
// expect stderr: {program}: error: expected argument for option -load
// expect stderr: {program}: error: unrecognised option -x
// expect stderr: {program}: error: can't read indirect file /dev/zero: File too large
// expect stderr: {program}: error: can't open indirect file .: Is a directory
// expect stderr: {program}: error: too many indirect files
// expect stderr: {program}: error: too many indirect files
// expect stderr: {program}: error: expected argument for option -define
// exit: 1
WScript.Echo('loaded');
