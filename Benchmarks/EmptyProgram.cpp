// What the start of any program costs that is linked with the libraries of the command line; `start-up`
// compares them.

int main() { }
