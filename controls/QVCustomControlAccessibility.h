#pragma once

// Lets screen readers see the editor as a list of items that can be selected,
// rather than as plain panels. Safe to call more than once.
void QVInstallCustomControlAccessibility();
