#include "shell/form_layout.h"

namespace kelpa {

namespace {

void setWidth(TwipRect& r, int w) {
    if (w >= 0) r.width = w;
}
void setHeight(TwipRect& r, int h) {
    if (h >= 0) r.height = h;
}

}  // namespace

FormLayout::FormLayout() {
    // Left column.
    r("CB_Connections") = {240, 120, 1575, 315};
    r("Site") = {240, 480, 1575, 285};
    r("PPort") = {240, 840, 735, 285};
    r("SPort") = {1080, 840, 735, 285};
    r("CMD_CONNECT") = {240, 1200, 1575, 255};
    r("CMD_DISCONNECT") = {240, 1440, 1575, 255};
    r("Frame3") = {120, 1680, 1815, 1335};
    r("InfoTabs") = {0, 3120, 2025, 4575};
    // Work area.
    r("PlayGround") = {2040, 0, 9735, 7695};
    r("SSTab1") = {0, 120, 9690, 7215};
    r("Text1") = {360, 7360, 7695, 285};
    r("BTN_BULK") = {8160, 7400, 615, 255};
    r("BTN_Flags") = {9000, 7400, 615, 255};
    r("Label11") = {8520, 7400, 735, 375};
    // Page "Main".
    r("SSTab2") = {0, 360, 9615, 6735};
    r("t") = {50, 360, 9615, 6255};
    r("HistT") = {50, 360, 9615, 6255};
    // Page "System".
    r("DBGWindow") = {120, 360, 9375, 6255};
    r("DebugInfo") = {120, 6720, 1335, 375};
    r("IG") = {1560, 6720, 1215, 375};
    r("CT") = {2880, 6720, 1215, 375};
    r("CMD_SaveConnection") = {4200, 6720, 1455, 375};
    r("CMD_About") = {5760, 6720, 1215, 375};
    // Pages "Custom 1" to "Custom 4".
    for (const char* m : {"Mwindow(0)", "Mwindow(1)", "Mwindow(2)", "Mwindow(3)"})
        r(m) = {120, 360, 9375, 6735};
    // Page "Tools" and its page "History".
    r("ToolsTabs") = {120, 360, 9375, 6735};
    r("HistView") = {120, 360, 7575, 5775};
    r("Tseek") = {120, 6240, 6255, 285};
    r("BSeek") = {6480, 6240, 855, 285};
    r("DList") = {7800, 600, 1455, 5100};
    r("Label1") = {7800, 360, 1455, 240};
    r("brefresh") = {7800, 6240, 1455, 285};
    r("BFilter") = {7800, 5880, 1455, 285};
    r("Label8") = {1200, 2400, 5400, 735};
}

void FormLayout::Form_Resize(int W, int H) {
    TwipRect& play = r("PlayGround");
    setWidth(play, W - 2160);
    setHeight(play, H - 435);
    TwipRect& text1 = r("Text1");
    text1.top = H - 800;
    setWidth(text1, play.width - 2040);
    r("BTN_BULK").top = text1.top + 50;
    r("BTN_BULK").left = play.width - 1575;
    r("BTN_Flags").top = text1.top + 50;
    r("BTN_Flags").left = play.width - 735;
    r("Label11").top = text1.top;
    r("Label11").left = play.width - 1215;
    TwipRect& tab1 = r("SSTab1");
    setHeight(tab1, play.height - 480);
    setWidth(tab1, play.width - 54);

    r("InfoTabs").top = H - 5040;

    TwipRect& tab2 = r("SSTab2");
    setHeight(tab2, tab1.height - 480);
    setWidth(tab2, tab1.width - 75);
    TwipRect& t = r("t");
    setHeight(t, tab2.height - 480);
    setWidth(t, tab2.width - 100);
    r("HistT").width = t.width;
    r("HistT").height = t.height;

    TwipRect& debugInfo = r("DebugInfo");
    debugInfo.top = tab1.height - 600;
    for (const char* c : {"IG", "CT", "CMD_About", "CMD_SaveConnection"}) r(c).top = debugInfo.top;
    setHeight(r("DBGWindow"), tab1.height - 960);
    setWidth(r("DBGWindow"), tab1.width - 200);

    for (const char* m : {"Mwindow(0)", "Mwindow(1)", "Mwindow(2)", "Mwindow(3)"}) {
        setWidth(r(m), tab1.width - 200);
        setHeight(r(m), tab1.height - 480);
    }

    TwipRect& tools = r("ToolsTabs");
    setHeight(tools, tab1.height - 480);
    setWidth(tools, tab1.width - 200);
    TwipRect& tseek = r("Tseek");
    tseek.top = tools.height - 495;
    setWidth(tseek, tools.width - 3120);
    r("BSeek").top = tseek.top;
    r("BSeek").left = tools.width - 2895;
    TwipRect& dlist = r("DList");
    dlist.left = tools.width - 1575;
    setHeight(dlist, tools.height - 1635);
    r("brefresh").top = tseek.top;
    r("brefresh").left = dlist.left;
    r("BFilter").left = dlist.left;
    r("BFilter").top = tools.height - 855;
    // The heading of the list goes with it; left behind, the growing view
    // would cover it.
    r("Label1").left = dlist.left;
    setWidth(r("HistView"), tools.width - 1800);
    setHeight(r("HistView"), tools.height - 960);
}

}  // namespace kelpa
