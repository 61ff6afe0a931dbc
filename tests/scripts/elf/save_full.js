// args: -define image={root}/examples/firmware/firmware.elf -load {script}
// expect error: write read /dev/full
ElfFile.load(image);
ElfFile.save('/dev/full');
