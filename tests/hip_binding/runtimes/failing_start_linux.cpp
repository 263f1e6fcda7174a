// Loading the library fails, since no library of the process has this function.

int kestrel_function_of_no_library();

int kestrel_uses_it();
int kestrel_uses_it() { return kestrel_function_of_no_library(); }
