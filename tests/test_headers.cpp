// A program for the sake of its precompiled header, which all test programs use.
int main() {}
