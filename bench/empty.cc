// A shared library that does nothing and has the plug-in's dependencies.
extern "C" __attribute__((visibility("default"))) int bench_empty() { return 0; }
