// The save dialog, used by a thread that stands for the user.

#include <windows.h>

#include <atomic>
#include <functional>
#include <thread>

#include "support/images.h"

namespace rastrel_test {
namespace {

constexpr int kBrowse = 102;
constexpr int kName = 101;
constexpr int kFormat = 103;
constexpr int kSystem = 104;
/// The text of a message box is a control with this number.
constexpr int kMessageText = 0xffff;

/// A visible dialog of this process in which a condition holds, as soon as there is one; null after
/// some seconds. Other programs may show theirs at the same time.
HWND WaitForDialog(const std::function<bool(HWND)>& condition) {
    for (int i = 0; i < 500; ++i) {
        HWND window = nullptr;
        while ((window = FindWindowExA(nullptr, window, "#32770", "Save image")) != nullptr) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId() && IsWindowVisible(window) != 0 &&
                condition(window))
                return window;
        }
        Sleep(20);
    }
    ADD_FAILURE() << "no dialog came";
    return nullptr;
}

HWND WaitForSaveDialog() {
    return WaitForDialog([](HWND window) { return GetDlgItem(window, kSystem) != nullptr; });
}

HWND WaitForQuestion() {
    return WaitForDialog([](HWND window) {
        std::array<char, 4> text = {};
        return GetDlgItem(window, kSystem) == nullptr &&
               GetDlgItemTextA(window, kMessageText, text.data(), text.size()) > 0;
    });
}

void Press(HWND window, int button) {
    PostMessageA(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

/// Chooses an entry of a list as the mouse would.
void Choose(HWND dialog, int list, const char* entry) {
    const auto at = SendDlgItemMessageA(dialog, list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                        reinterpret_cast<LPARAM>(entry));
    ASSERT_GE(at, 0) << entry;
    SendDlgItemMessageA(dialog, list, CB_SETCURSEL, static_cast<WPARAM>(at), 0);
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(list, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, list)));
}

void Type(HWND dialog, const std::string& name) {
    SetDlgItemTextA(dialog, kName, name.c_str());
}

std::string TextOf(HWND dialog, int control) {
    std::array<char, 300> text = {};
    GetDlgItemTextA(dialog, control, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::vector<std::string> Entries(HWND dialog, int list) {
    std::vector<std::string> entries;
    const auto count = SendDlgItemMessageA(dialog, list, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        std::array<char, 100> text = {};
        SendDlgItemMessageA(dialog, list, CB_GETLBTEXT, static_cast<WPARAM>(i),
                            reinterpret_cast<LPARAM>(text.data()));
        entries.emplace_back(text.data());
    }
    return entries;
}

struct Outcome {
    int result = -1;
    std::string name;
    int type = -99;
};

/// Calls Rastrel_DialogSave while a user does something with the dialog.
Outcome SaveWith(const TestImage& image, const std::function<void(HWND)>& user) {
    std::array<char, 260> name = {"untouched"};
    Outcome outcome;
    std::thread thread([&] {
        HWND dialog = WaitForSaveDialog();
        if (dialog != nullptr) user(dialog);
    });
    outcome.result = Rastrel_DialogSave(image, name.data(), &outcome.type);
    thread.join();
    outcome.name = name.data();
    return outcome;
}

/// An image that every format can take.
class SaveDialog : public testing::Test {
  protected:
    SaveDialog() : image_(20, 10, 8) {
        FillWithPattern(image_);
        Rastrel_SetGrayPalette(image_);
    }
    TestFolder folder_;
    TestImage image_;
};

TEST_F(SaveDialog, ListsFormatsAndCoordinateSystems) {
    const Outcome outcome = SaveWith(image_, [](HWND dialog) {
        EXPECT_EQ(
            Entries(dialog, kFormat),
            (std::vector<std::string>{".tif", ".bmp", ".jpg", ".jp2", ".gif", ".png", ".qvi",
                                      ".bil", ".bip", ".bsq", ".fot", ".gaf", ".map", ".gfc"}));
        EXPECT_EQ(Entries(dialog, kSystem),
                  (std::vector<std::string>{"(none)", "UTM32", "UTM33", "GB9 (fuso ovest)",
                                            "GB15 (fuso est)"}));
        Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.name, "untouched");
    EXPECT_EQ(outcome.type, -99);
    EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(SaveDialog, SavesInTheChosenFormat) {
    struct Case {
        const char* typed;
        const char* format;
        const char* saved;
        int type;
    };
    const Case cases[] = {
        {"without", ".tif", "without.tif", RASTREL_TYPE_TIFF},
        {"other.bmp", ".png", "other.png", RASTREL_TYPE_PNG},
        {"same.TIF", ".tif", "same.TIF", RASTREL_TYPE_TIFF},
        {"sheet 1.5", ".qvi", "sheet 1.5.qvi", RASTREL_TYPE_QVI},
        {"wavelets", ".jp2", "wavelets.jp2", RASTREL_TYPE_JPEG2000},
        {"rows", ".bil", "rows.bil", RASTREL_TYPE_BIL},
    };
    for (const Case& c : cases) {
        const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
            Type(dialog, folder_.Path(c.typed));
            Choose(dialog, kFormat, c.format);
            Press(dialog, IDOK);
        });
        EXPECT_EQ(outcome.result, 1) << c.typed;
        EXPECT_EQ(outcome.name, folder_.Path(c.saved));
        EXPECT_EQ(outcome.type, c.type) << c.typed;
        EXPECT_EQ(Rastrel_GetImageType(image_), c.type);
        const TestImage again;
        EXPECT_EQ(Rastrel_Read(again, outcome.name.c_str(), c.type), 1) << c.typed;
        EXPECT_EQ(again.Width(), 20);
    }
}

TEST_F(SaveDialog, FollowsATypedExtension) {
    const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
        Type(dialog, folder_.Path("typed.gif"));
        EXPECT_EQ(TextOf(dialog, kFormat), ".gif");
        Press(dialog, IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.type, RASTREL_TYPE_GIF);
}

TEST_F(SaveDialog, WritesTheCoordinateSystemBesideTheImage) {
    struct Case {
        const char* system;
        const char* meridian;
        const char* easting;
    };
    const Case cases[] = {{"UTM32", "9.0", "500000.0"},
                          {"UTM33", "15.0", "500000.0"},
                          {"GB9 (fuso ovest)", "9.0", "1500000.0"},
                          {"GB15 (fuso est)", "15.0", "2520000.0"}};
    int serial = 0;
    for (const Case& c : cases) {
        const std::string base = folder_.Path("sheet" + std::to_string(serial++));
        const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
            Type(dialog, base);
            Choose(dialog, kSystem, c.system);
            Press(dialog, IDOK);
        });
        EXPECT_EQ(outcome.result, 1);
        const std::string text = FileText(base + ".prj");
        const auto parameter = [&](const char* name, const char* value) {
            return text.find(std::string("PARAMETER[\"") + name + "\"," + value + "]") !=
                   std::string::npos;
        };
        EXPECT_TRUE(parameter("Central_Meridian", c.meridian)) << text;
        EXPECT_TRUE(parameter("False_Easting", c.easting)) << text;
    }
}

TEST_F(SaveDialog, AsksBeforeItReplacesAFile) {
    const std::string name = folder_.Write("old.bmp", Text("old"));
    const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
        Type(dialog, name);
        Press(dialog, IDOK);
        HWND question = WaitForQuestion();
        EXPECT_NE(TextOf(question, kMessageText).find(name), std::string::npos);
        Press(question, IDNO);
        while (IsWindow(question) != 0)
            Sleep(20);
        EXPECT_NE(IsWindow(dialog), 0) << "the user is to choose again";
        EXPECT_EQ(FileText(name), "old");
        Press(dialog, IDOK);
        Press(WaitForQuestion(), IDYES);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(FileText(name).substr(0, 2), "BM");
}

TEST_F(SaveDialog, WantsAName) {
    const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
        Type(dialog, "");
        Press(dialog, IDOK);
        HWND complaint = WaitForQuestion();
        Press(complaint, IDOK);
        while (IsWindow(complaint) != 0)
            Sleep(20);
        Press(dialog, IDCANCEL);
    });
    EXPECT_EQ(outcome.result, 2);
}

TEST_F(SaveDialog, LetsTheUserBrowse) {
    const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
        Type(dialog, folder_.Path("browsed.png"));
        Press(dialog, kBrowse);
        // The system's chooser has a button to save, too, and the name in a field of its own.
        HWND chooser = WaitForDialog([&](HWND window) {
            return window != dialog && GetDlgItem(window, kSystem) == nullptr &&
                   GetDlgItem(window, IDOK) != nullptr;
        });
        Sleep(300);
        Press(chooser, IDOK);
        while (IsWindow(chooser) != 0)
            Sleep(20);
        EXPECT_EQ(TextOf(dialog, kFormat), ".png");
        Press(dialog, IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.type, RASTREL_TYPE_PNG);
    EXPECT_EQ(folder_.Names(), (std::vector<std::string>{"browsed.png"}));
}

TEST_F(SaveDialog, PassesTheFailureOfASaveOn) {
    const Outcome outcome = SaveWith(image_, [&](HWND dialog) {
        Type(dialog, folder_.Path("ortho"));
        Choose(dialog, kFormat, ".fot");
        Choose(dialog, kSystem, "UTM32");
        Press(dialog, IDOK);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.type, RASTREL_TYPE_FOT);
    EXPECT_TRUE(folder_.Names().empty()) << "and no coordinate system for an image that is not";
}

TEST_F(SaveDialog, IsNotShownForNothing) {
    std::array<char, 260> name = {};
    int type = 0;
    const TestImage empty;
    EXPECT_EQ(Rastrel_DialogSave(-1, name.data(), &type), 0);
    EXPECT_EQ(Rastrel_DialogSave(empty, name.data(), &type), 0);
    EXPECT_EQ(Rastrel_DialogSave(image_, nullptr, &type), 0);
    EXPECT_EQ(Rastrel_DialogSave(image_, name.data(), nullptr), 0);
}

}  // namespace
}  // namespace rastrel_test
