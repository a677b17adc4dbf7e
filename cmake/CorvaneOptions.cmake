# Options shared by every Corvane target.
add_library(corvane_options INTERFACE)
target_compile_features(corvane_options INTERFACE cxx_std_20)
target_compile_options(corvane_options INTERFACE -Wall -Wextra -Wpedantic)
target_compile_definitions(corvane_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CONTEXTLESS_CONNECT
    QT_NO_KEYWORDS)

# A build with AddressSanitizer and UndefinedBehaviorSanitizer (scripts/test-sanitized.sh):
# any undefined behaviour ends the program, so a test that meets it fails.
option(CORVANE_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
if(CORVANE_SANITIZE)
    set(corvane_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_compile_options(corvane_options INTERFACE ${corvane_sanitizers})
    target_link_options(corvane_options INTERFACE ${corvane_sanitizers})
endif()
