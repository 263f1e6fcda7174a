// What a program costs that loads nothing but its language's own libraries.

int main() {}
