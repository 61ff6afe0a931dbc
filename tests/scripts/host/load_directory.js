// args-only: -load /tmp
// expect error: cannot load /tmp
