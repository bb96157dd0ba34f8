#pragma once

#include <locale.h>

// As there: what belongs to another header is declared where that was included before.
#ifdef _WCHAR_H
extern "C" int wcwidth_l(wchar_t character, locale_t locale);
#endif
