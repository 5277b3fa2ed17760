/* Drives a module as a foreign host would: contract_test MODULE. Works in the current folder. */
#include "host.h"

int main(int argc, char **argv) {
  Module module;
  int movedToModule = 0;
  if (argc != 2 || !LoadFilterModule(argv[1], &module, &movedToModule)) {
    printf("usage: contract_test MODULE, where MODULE is the full path of a module that loads\n");
    return 2;
  }
  CHECK(module.version != NULL);
  CHECK(module.info != NULL);
  if (!module.version || !module.info) return 1;
  CHECK(movedToModule); /* the module's folder is the current one once it is loaded */

  TestRows(&module);
  TestBaseDefaults();
  TestResults();
  TestReading();
  TestWriting();
  TestRoundTrip();
  printf("%d failures\n", FailureCount());
  return FailureCount() != 0;
}
