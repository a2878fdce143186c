extern "C" __attribute__((visibility("default"))) int QCPlugInSomethingElse() {
  return 0;
}
