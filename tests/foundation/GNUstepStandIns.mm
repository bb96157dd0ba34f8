// Stands in for what GNUstep lacks, or does in another way than macOS, so that the Foundation
// backend can be run on other systems. For tests alone.
#include "tests/foundation/GNUstepStandIns.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#import <objc/runtime.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace {

using Units = std::u16string;

Units unitsOf(NSString* string) {
    Units units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar*>(units.data())];
    return units;
}

Units decomposed(const Units& text) {
    UErrorCode status = U_ZERO_ERROR;
    Units result(text.size() * 4 + 1, u'\0');  // no character's decomposition is longer
    const std::int32_t length = unorm2_normalize(
        unorm2_getNFDInstance(&status), text.data(), static_cast<std::int32_t>(text.size()),
        result.data(), static_cast<std::int32_t>(result.size()), &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

Units folded(const Units& text, std::uint32_t options) {
    UErrorCode status = U_ZERO_ERROR;
    Units result(text.size() * 3 + 1, u'\0');  // nor its folding
    const std::int32_t length =
        u_strFoldCase(result.data(), static_cast<std::int32_t>(result.size()), text.data(),
                      static_cast<std::int32_t>(text.size()), options, &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

Units searchForm(NSString* string, std::uint32_t options) {
    return decomposed(folded(decomposed(unitsOf(string)), options));
}

bool isMark(const Units& text, std::size_t position) {
    if (position >= text.size()) {
        return false;
    }
    UChar32 character = 0;
    U16_GET(text.data(), 0, position, text.size(), character);
    return (U_GET_GC_MASK(character) & U_GC_M_MASK) != 0;
}

/** The characters that macOS leaves alone where the rules of grapheme clusters join them. */
bool standsAlone(const Units& units, NSUInteger boundary) {
    const char16_t after = units[boundary];
    const char16_t before = units[boundary - 1];
    return after == 0x200C || after == 0x0E33 || after == 0x0EB3 ||
           (0x0600 <= before && before <= 0x0605) || before == 0x06DD || before == 0x070F;
}

/**
 * The composed sequence around an index as macOS finds it: its extended grapheme cluster, but for
 * the characters that it leaves alone. GNUstep's own knows combining marks alone.
 */
NSRange sequenceAt(NSString* string, SEL /*selector*/, NSUInteger index) {
    const Units units = unitsOf(string);
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* iterator = ubrk_open(UBRK_CHARACTER, "", units.data(),
                                         static_cast<std::int32_t>(units.size()), &status);
    auto end = static_cast<NSUInteger>(ubrk_following(iterator, static_cast<std::int32_t>(index)));
    auto start = static_cast<NSUInteger>(ubrk_previous(iterator));
    ubrk_close(iterator);
    for (NSUInteger boundary = start + 1; boundary < end; ++boundary) {
        if (standsAlone(units, boundary)) {
            (boundary <= index ? start : end) = boundary;
        }
    }
    return NSMakeRange(start, end - start);
}

/** The zone that the environment names now; GNUstep's own is the one from the process's start. */
NSTimeZone* zoneOfEnvironment(id /*self*/, SEL /*selector*/) {
    const char* name = std::getenv("TZ");
    return [NSTimeZone
        timeZoneWithName:[NSString stringWithUTF8String:name != nullptr ? name : "UTC"]];
}

void replaceMethod(Class cls, SEL selector, IMP implementation) {
    class_replaceMethod(cls, selector, implementation,
                        method_getTypeEncoding(class_getInstanceMethod(cls, selector)));
}

}  // namespace

@implementation NSString (GNUstepStandIns)

+ (void)load {
    for (const char* name : {"NSString", "GSString", "GSUnicodeString"}) {
        replaceMethod(static_cast<Class>(objc_getClass(name)),
                      @selector(rangeOfComposedCharacterSequenceAtIndex:),
                      reinterpret_cast<IMP>(sequenceAt));
    }
    replaceMethod(object_getClass([NSTimeZone class]), @selector(systemTimeZone),
                  reinterpret_cast<IMP>(zoneOfEnvironment));
}

- (BOOL)localizedCaseInsensitiveContainsString:(NSString*)pattern {
    NSString* language = [[NSLocale currentLocale] objectForKey:NSLocaleLanguageCode];
    const bool turkic = [language isEqualToString:@"tr"] || [language isEqualToString:@"az"];
    const std::uint32_t options = turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
    const Units wanted = searchForm(pattern, options);
    const Units searched = searchForm(self, options);
    for (std::size_t hit = searched.find(wanted); hit != Units::npos;
         hit = searched.find(wanted, hit + 1)) {
        if (!isMark(searched, hit + wanted.size())) {
            return YES;
        }
    }
    return NO;
}

@end

/**
 * Cookies in memory, one storage for each identifier. GNUstep has a single storage and keeps it in
 * a file of the account, wherever `HOME` points: no test may reach it.
 */
@interface StandInCookieStorage : NSObject {
    NSMutableArray* _cookies;
}
@end

@implementation StandInCookieStorage

- (id)init {
    if ((self = [super init]) != nil) {
        _cookies = [[NSMutableArray alloc] init];
    }
    return self;
}

- (void)dealloc {
    [_cookies release];
    [super dealloc];
}

- (NSArray*)cookies {
    return [[_cookies copy] autorelease];
}

- (void)deleteCookie:(NSHTTPCookie*)cookie {
    for (NSHTTPCookie* present in [self cookies]) {
        if ([[present domain] isEqualToString:[cookie domain]] &&
            [[present name] isEqualToString:[cookie name]] &&
            [[present path] isEqualToString:[cookie path]]) {
            [_cookies removeObject:present];
        }
    }
}

- (void)setCookie:(NSHTTPCookie*)cookie {
    [self deleteCookie:cookie];
    [_cookies addObject:cookie];
}

@end

@implementation NSHTTPCookieStorage (GNUstepStandIns)

+ (NSHTTPCookieStorage*)sharedCookieStorageForGroupContainerIdentifier:(NSString*)identifier {
    static NSMutableDictionary* storages = [[NSMutableDictionary alloc] init];
    if ([storages objectForKey:identifier] == nil) {
        [storages setObject:[[[StandInCookieStorage alloc] init] autorelease] forKey:identifier];
    }
    return [storages objectForKey:identifier];
}

@end
