/* A host in C: makes an image, saves it, reads it back. Exit code 0 when all is as it should be. */
#include <rastrel.h>
#include <stdio.h>

int main(void) {
    const char* name = "host-test.qvi";
    unsigned char red = 0, green = 0, blue = 0;
    int width = 0, height = 0, bits = 0, ok;
    int image = Rastrel_New();
    int copy = Rastrel_New();
    ok = Rastrel_Create(image, 20, 10, 24) && Rastrel_Fill(image, 1, 2, 3) &&
         Rastrel_Save(image, name, RASTREL_TYPE_NONE) &&
         Rastrel_ReadInfo(name, &width, &height, &bits) && width == 20 && height == 10 &&
         bits == 24 && Rastrel_Read(copy, name, RASTREL_TYPE_NONE) &&
         Rastrel_GetRGB(copy, 19, 9, &red, &green, &blue) && red == 1 && green == 2 && blue == 3;
    ok = Rastrel_Delete(image) && Rastrel_Delete(copy) && remove(name) == 0 && ok;
    puts(ok ? "as it should be" : "wrong");
    return ok ? 0 : 1;
}
