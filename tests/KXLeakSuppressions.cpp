// Linked into every test program (not through a library, which the linker could drop).
// Fontconfig keeps its configuration and font caches for the life of the process (Pango asks
// it for every font), and the leak checker counts them at exit. They are not ours to free.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
