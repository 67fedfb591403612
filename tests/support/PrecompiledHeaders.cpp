// Empty: the target of the headers that are precompiled for all tests needs a source.
// SPDX-License-Identifier: MIT
int main() {}
