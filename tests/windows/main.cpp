#include <gtest/gtest.h>

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  const int result = RUN_ALL_TESTS();
  // A filter that matches no test has tested nothing.
  return testing::UnitTest::GetInstance()->test_to_run_count() == 0 ? 1 : result;
}
