// A shared library that does nothing and depends on what the plug-in depends on.
extern "C" __attribute__((visibility("default"))) int bench_empty() { return 0; }
