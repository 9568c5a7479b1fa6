// The program that the tests of the cache's faults kill: a session's writes to a cache.
//   cache_fault_child FOLDER
// Exit: 0 whatever was refused; others wrong.
#include "tests/preview/cache_work.h"
#include "tests/support/fault_arm.h"

#include <iostream>

int main(int, char** argv)
{
    using namespace tamlo;
    test::CacheWork work(argv[1]);
    test::armFaults(true);
    work.run();
    test::armFaults(false);
    std::cout << test::countedCalls() << std::endl;
    return 0;
}
