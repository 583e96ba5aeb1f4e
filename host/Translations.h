// SPDX-License-Identifier: MIT
#pragma once

/// Loads the texts of Qt, the library and this program in the user's language, as far as there are
/// any, for the application object that stands now.
void installTranslations();
