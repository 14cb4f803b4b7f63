// Not like C++: )" R"( \" "" \ \\ ; ;; [a;b] ${source} @name@ $<CONFIG> ??= %0a %s \x41 café ÿ tab	here
#if 0
  #include "is not there.h"
#endif
constant char text[] = "a;\"b\"\\\n";

kernel void odd(global char* v, local int* l, int4 i) { v[0] = text[0] + l[0] + i.x; } // no line end