# Options shared by every Corvane target.
add_library(corvane_options INTERFACE)
target_compile_features(corvane_options INTERFACE cxx_std_20)
target_compile_options(corvane_options INTERFACE -Wall -Wextra -Wpedantic)
target_compile_definitions(corvane_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CONTEXTLESS_CONNECT
    QT_NO_KEYWORDS)
