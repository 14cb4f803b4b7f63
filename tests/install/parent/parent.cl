kernel void greet(global char* name) { name[0] = 0; }
