// The least that starting and ending a process can cost.
int main(void) { return 0; }
