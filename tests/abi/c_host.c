/* c_host.c: the smallest host, in C: calls every exported function of the families once, through the built library. */
#include <orven/orven.h>

#include <stdio.h>
#include <string.h>

static int failures = 0;

static void expect(int holds, const char* what)
{
    if (holds) return;
    fprintf(stderr, "c_host: %s\n", what);
    failures++;
}

int main(void)
{
    char text[64];
    OrvWChar wide[64];
    const OrvWChar missing[] = { 'n', 'o', 'n', 'e', '.', 'i', 'n', 'i', 0 };
    const OrvWChar here[] = { '.', '/', 0 };

    expect(GetServiceInfo() == 0, "GetServiceInfo");
    expect(ErrorToString(0x840003F4, text, sizeof(text)) == 0, "ErrorToString");
    expect(strcmp(text, "Error 1012: no titlesets defined") == 0, "text of 1012");
    expect(ErrorToStringW(0x840003F4, wide, 64) == 0, "ErrorToStringW");
    expect(wide[0] == 'E' && wide[31] == 'd' && wide[32] == 0, "wide text of 1012");
    /* A project that is not there has no version. */
    expect(ParseDVDDesc("none.ini", "./", "", 0, 0, "") == 0x840003F1, "ParseDVDDesc");
    expect(ParseDVDDescW(missing, here, 0, 0, 0, 0) == 0x840003F1, "ParseDVDDescW");
    return failures ? 1 : 0;
}
