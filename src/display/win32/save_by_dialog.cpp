#include "display/desktop.h"
#include "display/win32/save_dialog.h"
#include "platform/message.h"

namespace rastrel {

namespace {

/// The cursor that asks for patience, until the end.
class WaitCursor {
  public:
    WaitCursor() : old_(SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)))) {}
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor() { SetCursor(old_); }

  private:
    HCURSOR old_;
};

/// Where the image is already, in its own format if that is offered.
SaveChoice FirstChoice(const ImageObject& image) {
    SaveChoice choice;
    choice.name = image.Raster()->FileName();
    choice.format = std::max(SaveExtensionOf(choice.name), 0);
    return choice;
}

bool Save(ImageObject& image, const SaveChoice& choice, int type) {
    const WaitCursor patience;
    return image.Save(choice.name, type);
}

}  // namespace

int SaveByDialog(ImageObject& image, char* name, int* type) {
    SaveChoice choice = FirstChoice(image);
    switch (AskHowToSave(GetActiveWindow(), choice)) {
        case SaveAnswer::kNoDialog:
            return kDialogSaveFailed;
        case SaveAnswer::kCancelled:
            return kDialogCancelled;
        case SaveAnswer::kChosen:
            break;
    }
    const auto extension = SaveExtensions()[static_cast<std::size_t>(choice.format)];
    name[choice.name.copy(name, kDialogNameBytes - 1)] = '\0';
    *type = ImageTypeFromName(extension);
    if (!Save(image, choice, *type)) return kDialogSaveFailed;
    if (choice.system != nullptr && !WriteProjectionFile(choice.name, *choice.system))
        ShowMessage("The file with the coordinate system could not be written.");
    return kDialogSaved;
}

}  // namespace rastrel
