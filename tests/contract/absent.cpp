extern "C" int contract_absent() { return 0; }
