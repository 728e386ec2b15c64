#include "Pallisande/Widgets/Icons.h"

#include <array>

namespace Pallisande {

namespace {

// What several icons of pages share: a sheet with its corner folded.
#define PAGE "<path d='M6 3h8l4 4v14H6zM14 3v4h4'/>"
// A filled dot in the colour of the strokes.
#define DOT(x, y) "<path d='M" x " " y "h.01' stroke-width='2.25'/>"

// In the order of Icon.
constexpr std::array<const char*, iconCount> shapes {
    "<circle cx='12' cy='12' r='9'/><path d='M12 7v5l3.5 2'/>", // clock
    "<path d='M9 6h11M9 12h11M9 18h11'/>" DOT("4.5", "6") DOT("4.5", "12") DOT("4.5", "18"), // list
    "<path d='M18 7V4H6l7 8-7 8h12v-3'/>", // sigma
    "<circle cx='12' cy='8' r='4'/><path d='M4.5 20c.8-4 3.8-6 7.5-6s6.7 2 7.5 6'/>", // person
    "<path d='M5.5 3h13v18l-2.2-1.5L14.2 21 12 19.5 9.8 21l-2.1-1.5L5.5 21zM9 8h6M9 12h6'/>", // invoice
    "<path d='M4 20h16M7 16v-5M12 16V5M17 16v-8'/>", // bar chart
    "<path d='M4 9h15l-4-4M20 15H5l4 4'/>", // two arrows
    "<path d='M12 5v14M5 12h14'/>", // plus
    "<circle cx='10.5' cy='10.5' r='6.5'/><path d='M15.5 15.5L21 21'/>", // magnifier
    "<circle cx='12' cy='12' r='3'/><circle cx='12' cy='12' r='7'/>"
    "<path d='M12 2.5V5M12 19v2.5M2.5 12H5M19 12h2.5M5.3 5.3L7 7M17 17l1.7 1.7M18.7 5.3L17 7M7 17l-1.7 "
    "1.7'/>", // gear
    "<path d='M12 4L2.8 20h18.4zM12 10v4.5'/>" DOT("12", "17.25"), // warning
    "<circle cx='12' cy='12' r='9'/><path d='M12 11v5.5'/>" DOT("12", "7.75"), // info
    "<path d='M5 12.5l4.5 4.5L19 7.5'/>", // check
    "<path d='M6 6l12 12M18 6L6 18'/>", // cross
    "<path d='M6 15l6-6 6 6'/>", // chevron up
    "<path d='M6 9l6 6 6-6'/>", // chevron down
    "<path d='M15 6l-6 6 6 6'/>", // chevron left
    "<path d='M9 6l6 6-6 6'/>", // chevron right
    "<path d='M7 17L17 7M9 7h8v8'/>", // arrow up right
    "<path d='M3 19V5.5h6l2 2.5h10v11z'/>", // folder
    PAGE "<path d='M9 12h6M9 16h6'/>", // document
    PAGE "<path d='M9 11h6v6H9zM12 11v6M9 14h6'/>", // spreadsheet
    "<path d='M3 4h18M4.5 4v11h15V4M12 15v3M8.5 21l3.5-3 3.5 3'/>", // presentation
    PAGE "<path d='M10.5 17.5v-6.5h1.75a1.75 1.75 0 010 3.5h-1.75'/>", // PDF page
    PAGE "<path d='M10.5 11.5L8.5 14l2 2.5M13.5 11.5l2 2.5-2 2.5'/>", // code
    "<path d='M3 5.5h18v13H3zM6.5 15h5M14.5 15h3M6.5 11.5h3M12.5 11.5h5'/>", // subtitles
    "<path d='M5.5 11h13v9.5h-13zM8 11V7.5a4 4 0 018 0V11'/>", // lock
    "<path d='M8 5L4 9l4 4M4 9h10.5a5 5 0 010 10H9'/>", // undo
    "<path d='M16 5l4 4-4 4M20 9H9.5a5 5 0 000 10H15'/>", // redo
    "<path d='M4 6.5h16M9 6.5V4h6v2.5M6 6.5l1 14h10l1-14M10 10.5v6M14 10.5v6'/>", // trash
    "<path d='M3.5 4.5h17v4h-17zM5 8.5V20h14V8.5M10 12h4'/>", // archive
    "<path d='M4 20l1-4.5L16.5 4 20 7.5 8.5 19zM14 6.5l3.5 3.5'/>", // pencil
    "<path d='M8.5 8.5H20V21H8.5zM5.5 15.5H4V3h11.5v2.5'/>", // copy
    "<path d='M19.5 11.5l-8 8a5 5 0 01-7-7l8.5-8.5a3.3 3.3 0 014.7 4.7L9.5 17a1.6 1.6 0 01-2.3-2.3l7-7'/>",
    "<path d='M12 3.5v11M7.5 10.5l4.5 4.5 4.5-4.5M4 20h16'/>", // download
    "<path d='M12 15V4M7.5 8L12 3.5 16.5 8M4 20h16'/>", // upload
    "<path d='M7 8.5V3.5h10v5M7 17H3.5V8.5h17V17H17M7 14h10v6.5H7z'/>", // printer
    "<path d='M3 5.5h18v13H3zM3.5 6l8.5 7 8.5-7'/>", // mail
    "<path d='M4 5.5h16V20.5H4zM4 10h16M8 3v4.5M16 3v4.5'/>", // calendar
    "<circle cx='12' cy='12' r='9'/><path d='M3 12h18M12 3c3 2.5 4 5.5 4 9s-1 6.5-4 9c-3-2.5-4-5.5-4-9s1-6.5 "
    "4-9z'/>",
    "<ellipse cx='12' cy='6' rx='7' ry='3'/>"
    "<path d='M5 6v6c0 1.7 3.1 3 7 3s7-1.3 7-3V6M5 12v6c0 1.7 3.1 3 7 3s7-1.3 7-3v-6'/>", // coins
    "<circle cx='7' cy='7' r='2.75'/><circle cx='17' cy='17' r='2.75'/><path d='M18.5 5.5l-13 13'/>", // percent
    "<path d='M12 4v16M7.5 20h9M5 7h14M5 7l-2.5 7h5zM19 7l-2.5 7h5z'/>", // scales
    "<path d='M6 17V11a6 6 0 0112 0v6l1.5 1.5h-15zM10.5 21.5h3'/>", // bell
    "<path d='M3 4.5h18v15H3zM9 4.5v15'/>", // sidebar
    "<path d='M3 4.5h18v15H3zM15 4.5v15'/>", // inspector
    "<path d='M12 3v9M8.5 9l3.5 3.5L15.5 9M3.5 13v7h17v-7M3.5 15h4.5l1.5 2h5l1.5-2h4.5'/>", // drop tray
    "<path d='M12 3a9 9 0 019 9'/><circle cx='12' cy='12' r='9' stroke-opacity='0.25'/>", // spinner
    "<path d='M10 14a4 4 0 010-5.7l3-3a4 4 0 015.7 5.7l-1.5 1.5M14 10a4 4 0 010 5.7l-3 3a4 4 0 "
    "01-5.7-5.7l1.5-"
    "1.5'/>", // link
    "<path d='M12 4l8 8-8 8-8-8z' stroke-width='2.5'/>", // diamond
    "<circle cx='12' cy='12' r='8' stroke-width='2.5'/>"
    "<path d='M12 5v14M13 5.5a6.6 6.6 0 010 13z' stroke-width='2.5'/><path d='M15 8v8M17 10v4' "
    "stroke-width='3'/>", // half circle
    "<path d='M5.5 4h13v16h-13zM9 9h6M9 14h6' stroke-width='2.5'/>", // page
    "<path d='M12 12h.01' stroke-width='16'/>", // dot
    "<circle cx='12' cy='12' r='8' stroke-width='2.5'/><path d='M6.5 6.5l11 11' stroke-width='2.5'/>", // barred
    "<circle cx='12' cy='12' r='8' stroke-width='2.5' stroke-dasharray='0.1 4.09'/>", // dotted circle
    "<circle cx='12' cy='12' r='8' stroke-width='2.5'/>", // circle
    "<path d='M12 4v10' stroke-width='3.5'/><path d='M12 19.5h.01' stroke-width='4'/>", // exclamation
    "<path d='M8 5L4 9l4 4M4 9h10.5a5 5 0 010 10H9' stroke-width='2.5'/>", // returning
    "<path d='M5 12h14' stroke-width='3'/>", // minus
};

#undef DOT
#undef PAGE

} // namespace

const char* iconShape(Icon icon) { return shapes[static_cast<std::size_t>(icon)]; }

} // namespace Pallisande
