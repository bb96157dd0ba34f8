#pragma once

#include <locale.h>
#include <wchar.h>

extern "C" int wcwidth_l(wchar_t character, locale_t locale);
