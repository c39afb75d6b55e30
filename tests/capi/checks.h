#ifndef CORVANE_TESTS_CAPI_CHECKS_H
#define CORVANE_TESTS_CAPI_CHECKS_H

#include <stdio.h>

/* Tests in C: a check that fails is printed and counted. */
extern int failedChecks;

#define CHECK(condition)                                                                                               \
    ((condition) ? (void)0 : (void)(++failedChecks, printf("%s:%d: %s\n", __FILE__, __LINE__, #condition)))

void RecordsLieAsTheirFieldsWereCounted(void);

#endif
