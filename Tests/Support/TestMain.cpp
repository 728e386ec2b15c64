#include <gtest/gtest.h>

#include <clocale>
#include <locale>

// Tests run in the locale of their environment, as programs with a window do, so that a decimal comma or a
// Turkish i would show.
int main(int argc, char** argv)
{
    if (std::setlocale(LC_ALL, ""))
        std::locale::global(std::locale(""));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
