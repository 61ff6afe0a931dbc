// args-only: -load {dir}
// expect error: cannot load {dir}
