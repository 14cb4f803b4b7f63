// Becomes SPIR-V whose specialization constants 7 and 8 say what is added and whether the sum is negated.
__attribute__((overloadable)) int __spirv_SpecConstant(int id, int preset);
__attribute__((overloadable)) bool __spirv_SpecConstant(int id, bool preset);

__kernel void f(__global int* values) {
    int const sum = values[get_global_id(0)] + __spirv_SpecConstant(7, 100);
    values[get_global_id(0)] = __spirv_SpecConstant(8, false) ? -sum : sum;
}
