// Nothing of its own: stands for the headers that are precompiled for all tests.
// SPDX-License-Identifier: MIT
int main() {}
