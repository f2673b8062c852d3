"""The editor's images as SVG drawings, one function per resource id.

Every entry of IMAGES gives (width, height, frames, drawing); the drawing is the SVG body in a
coordinate system of width x height pixels with the frames stacked from the top. ICONS gives the
art of the Windows icon groups as (view box size, drawing); it is drawn at every icon size.
"""

from theme import (ALERT, AMBER, BEZEL, ERROR, HIGHLIGHT, INFO, LEGEND, LEGEND_DIM, LEGEND_FAINT,
                   LOGO_FONT, bezel, frames, label, led_bar, stroke_style)

# ---------------------------------------------------------------------------------------------
# Symbols, each drawn around a centre (cx, cy) in a box about 16 pixels across.


def power_symbol(cx, cy, colour, width=1.7):
    return (f'<path d="M{cx - 3.9} {cy - 4.3} A5.8 5.8 0 1 0 {cx + 3.9} {cy - 4.3}" {stroke_style(colour, width)}/>'
            f'<path d="M{cx} {cy - 7} V{cy - 0.5}" {stroke_style(colour, width)}/>')


def flat_symbol(cx, cy, colour):
    return (f'<path d="M{cx - 10} {cy} H{cx + 10}" {stroke_style(colour, 1.8)}/>'
            f'<path d="M{cx - 5} {cy - 7} V{cy - 2.5} M{cx - 7} {cy - 4.5} L{cx - 5} {cy - 2.5} L{cx - 3} {cy - 4.5}" '
            f'{stroke_style(colour, 1.3)}/>'
            f'<path d="M{cx + 5} {cy + 7} V{cy + 2.5} M{cx + 3} {cy + 4.5} L{cx + 5} {cy + 2.5} L{cx + 7} {cy + 4.5}" '
            f'{stroke_style(colour, 1.3)}/>')


def clear_symbol(cx, cy, colour):
    return (f'<circle cx="{cx}" cy="{cy}" r="6.5" {stroke_style(colour, 1.4)}/>'
            f'<path d="M{cx - 3} {cy - 3} L{cx + 3} {cy + 3} M{cx + 3} {cy - 3} L{cx - 3} {cy + 3}" '
            f'{stroke_style(colour, 1.6)}/>')


def spectrum_symbol(cx, cy, colour):
    heights = [5, 9, 13, 10, 7, 11, 6, 4]
    bars = "".join(
        f'<rect x="{cx - 9.5 + i * 2.5:.1f}" y="{cy + 6.5 - h}" width="1.6" height="{h}" rx="0.5" fill="{colour}"/>'
        for i, h in enumerate(heights))
    return bars


def source_symbol(cx, cy, colour, output):
    if output:
        return (f'<path d="M{cx - 5} {cy - 6} H{cx - 9} V{cy + 6} H{cx - 5}" {stroke_style(colour, 1.5)}/>'
                f'<path d="M{cx - 4} {cy} H{cx + 9} M{cx + 5} {cy - 4} L{cx + 9} {cy} L{cx + 5} {cy + 4}" '
                f'{stroke_style(colour, 1.7)}/>')
    return (f'<path d="M{cx + 5} {cy - 6} H{cx + 9} V{cy + 6} H{cx + 5}" {stroke_style(colour, 1.5)}/>'
            f'<path d="M{cx - 9} {cy} H{cx + 3} M{cx - 1} {cy - 4} L{cx + 3} {cy} L{cx - 1} {cy + 4}" '
            f'{stroke_style(colour, 1.7)}/>')


def slope_symbol(cx, cy, colour, tilted):
    axes = f'<path d="M{cx - 9} {cy - 7} V{cy + 6.5} H{cx + 9}" {stroke_style(LEGEND_FAINT, 1.2)}/>'
    line = (f'M{cx - 6.5} {cy + 4} L{cx + 8} {cy - 6}' if tilted else f'M{cx - 6.5} {cy} H{cx + 8}')
    return axes + f'<path d="{line}" {stroke_style(colour, 1.8)}/>'


def headphones_symbol(cx, cy, colour, scale=1.0):
    s = scale
    return (f'<path d="M{cx - 6 * s} {cy + 2 * s} V{cy} A{6 * s} {6 * s} 0 0 1 {cx + 6 * s} {cy} V{cy + 2 * s}" '
            f'{stroke_style(colour, 1.5 * s)}/>'
            f'<rect x="{cx - 7.5 * s}" y="{cy + 0.5 * s}" width="{3.6 * s}" height="{5.5 * s}" rx="{1.2 * s}" fill="{colour}"/>'
            f'<rect x="{cx + 3.9 * s}" y="{cy + 0.5 * s}" width="{3.6 * s}" height="{5.5 * s}" rx="{1.2 * s}" fill="{colour}"/>')


def padlock_symbol(cx, cy, colour, open_shackle=False, scale=1.0):
    s = scale
    if open_shackle:
        shackle = (f'M{cx + 3.5 * s} {cy - 1 * s} V{cy - 4.5 * s} A{3.5 * s} {3.5 * s} 0 0 0 {cx - 3.5 * s} '
                   f'{cy - 4.5 * s} V{cy - 3.5 * s}')
    else:
        shackle = (f'M{cx - 3.5 * s} {cy - 1 * s} V{cy - 4.5 * s} A{3.5 * s} {3.5 * s} 0 0 1 {cx + 3.5 * s} '
                   f'{cy - 4.5 * s} V{cy - 1 * s}')
    return (f'<path d="{shackle}" {stroke_style(colour, 1.6 * s)}/>'
            f'<rect x="{cx - 5.5 * s}" y="{cy - 1.5 * s}" width="{11 * s}" height="{8.5 * s}" rx="{1.5 * s}" '
            f'fill="{colour}"/>'
            f'<circle cx="{cx}" cy="{cy + 2.2 * s}" r="{1.2 * s}" fill="{BEZEL}"/>')


def polarity_symbol(cx, cy, colour):
    return (f'<circle cx="{cx}" cy="{cy}" r="6" {stroke_style(colour, 1.7)}/>'
            f'<path d="M{cx - 7} {cy + 7} L{cx + 7} {cy - 7}" {stroke_style(colour, 1.7)}/>')


def info_symbol(cx, cy, colour):
    return (f'<circle cx="{cx}" cy="{cy - 5.5}" r="1.5" fill="{colour}"/>'
            f'<path d="M{cx - 2} {cy - 1.5} H{cx} V{cy + 6.5} M{cx - 2.5} {cy + 6.5} H{cx + 2.5}" '
            f'{stroke_style(colour, 1.7)}/>')


def emblem_curve(cx, cy, colour, width=2.4, scale=1.0):
    """The Velmoran mark: a deep notch in a flat response, which reads as a V."""
    s = scale
    return (f'<path d="M{cx - 10 * s} {cy - 6 * s} C{cx - 5 * s} {cy - 6 * s} {cx - 3 * s} {cy + 7 * s} {cx} {cy + 7 * s} '
            f'C{cx + 3 * s} {cy + 7 * s} {cx + 5 * s} {cy - 6 * s} {cx + 10 * s} {cy - 6 * s}" '
            f'{stroke_style(colour, width * s)}/>')


# ---------------------------------------------------------------------------------------------
# Switch faces: 64 x 43, frame 0 off, frame 1 on.


def switch(symbol, legends):
    def draw(lit):
        colour = AMBER if lit else LEGEND
        glow = ' filter="url(#softGlow)"' if lit else ""
        return (bezel(2, 2, 60, 39, 5, lit) + led_bar(32, 6, 20, lit) +
                f'<g{glow}>{symbol(32, 19.5, colour, lit)}</g>' + label(32, 37, legends[1 if lit else 0], lit))
    return frames([draw(False), draw(True)], 43)


SWITCHES = {
    129: (lambda cx, cy, c, lit: power_symbol(cx, cy, c), ("EFFECT", "EFFECT")),
    130: (lambda cx, cy, c, lit: flat_symbol(cx, cy, c), ("FLAT", "FLAT")),
    131: (lambda cx, cy, c, lit: clear_symbol(cx, cy, c), ("CLEAR", "CLEAR")),
    132: (lambda cx, cy, c, lit: spectrum_symbol(cx, cy, c), ("FFT", "FFT")),
    133: (lambda cx, cy, c, lit: source_symbol(cx, cy, c, lit), ("INPUT", "OUTPUT")),
    134: (lambda cx, cy, c, lit: slope_symbol(cx, cy, c, lit), ("SLOPE", "3 dB/OCT")),
}

# ---------------------------------------------------------------------------------------------
# 16 x 16 icons: filter shapes for the band menu, line icons for the band info box.

ZERO_DB = f'<path d="M0.5 9.5 H15.5" stroke="{LEGEND_FAINT}" stroke-width="1"/>'


def response_icon(curve, colour=AMBER):
    """A filter's magnitude response over the 0 dB line, amber with a soft dark outline."""
    return (ZERO_DB + f'<path d="{curve}" {stroke_style("#000000", 3.2)} stroke-opacity="0.45"/>'
            f'<path d="{curve}" {stroke_style(colour, 1.7)}/>')


ICON_DRAWINGS = {
    135: response_icon("M1.5 6 H6 C9.5 6 11 9 14 14.5"),                           # low pass
    136: response_icon("M2 14.5 C5 9 6.5 6 10 6 H14.5"),                             # high pass
    137: response_icon("M1.5 9.5 H3.5 C6.3 9.5 6.3 2.5 8 2.5 C9.7 2.5 9.7 9.5 12.5 9.5 H14.5"),  # peak
    138: response_icon("M1.5 4 H4 C7.5 4 7.5 9.5 11 9.5 H14.5"),                   # low shelf
    139: response_icon("M1.5 9.5 H5 C8.5 9.5 8.5 4 12 4 H14.5"),                   # high shelf
    140: response_icon("M1.5 14.5 C5 14 6 3 8 3 C10 3 11 14 14.5 14.5"),           # band pass
    141: (f'<path d="M1.5 9.5 H14.5" {stroke_style(LEGEND, 1.6)}/>'                # no filter
          f'<circle cx="8" cy="9.5" r="2.2" fill="#1c1f24" stroke="{LEGEND}" stroke-width="1.2"/>'),
    142: (ZERO_DB + f'<path d="M1.5 12 H3.5 C6.5 12 6 5 8 5 C10 5 9.5 12 12.5 12 H14.5" '   # filter function
          f'{stroke_style(LEGEND, 1.4)}/><circle cx="8" cy="5" r="2.4" fill="{AMBER}"/>'),
    143: (f'<circle cx="8" cy="8" r="6.3" fill="{ERROR}" fill-opacity="0.2" stroke="{ERROR}" stroke-width="1.3"/>'
          f'<path d="M5.3 5.3 L10.7 10.7 M10.7 5.3 L5.3 10.7" {stroke_style("#ffd9da", 1.7)}/>'),   # delete
    144: (f'<path d="M1.5 8 C3 2.5 5 2.5 6.5 8 S10 13.5 11.5 8 S14 4 14.5 5" {stroke_style(LEGEND, 1.5)}/>'),  # frequency
    145: (f'<path d="M2 10 C5.5 10 6 3.5 8 3.5 C10 3.5 10.5 10 14 10" {stroke_style(LEGEND, 1.4)}/>'           # Q
          f'<path d="M4 13.5 H12 M5.8 11.8 L4 13.5 L5.8 15.2 M10.2 11.8 L12 13.5 L10.2 15.2" '
          f'{stroke_style(AMBER, 1.2)}/>'),
    146: (f'<path d="M8 1.8 V14.2 M5.3 4.5 L8 1.8 L10.7 4.5 M5.3 11.5 L8 14.2 L10.7 11.5" '                  # gain
          f'{stroke_style(LEGEND, 1.5)}/><path d="M3 8 H13" {stroke_style(AMBER, 1.4)}/>'),
    147: power_symbol(8, 9, LEGEND, 1.5),                                             # band on/off
    148: headphones_symbol(8, 7.5, AMBER, 0.95),                                      # solo
    149: padlock_symbol(8, 8.5, LEGEND, scale=0.9),                                   # lock
}

# ---------------------------------------------------------------------------------------------
# Frame pieces, handles and 32 x 32 buttons.


def corner_bracket(lit):
    colour = AMBER if lit else "#5a616b"
    glow = ' filter="url(#glow)"' if lit else ""
    return (f'<path d="M3.5 22 V8.5 Q3.5 3.5 8.5 3.5 H22" {stroke_style(BEZEL, 4)} stroke-opacity="0.6"/>'
            f'<path d="M3.5 22 V8.5 Q3.5 3.5 8.5 3.5 H22"{glow} {stroke_style(colour, 2.2)}/>'
            f'<circle cx="9" cy="9" r="1.4" fill="{colour}"/>')


def screw(angle):
    return (f'<circle cx="16" cy="16" r="7" fill="url(#screwHead)" stroke="{BEZEL}" stroke-width="1"/>'
            f'<circle cx="16" cy="16" r="6.2" fill="none" stroke="{HIGHLIGHT}" stroke-opacity="0.12"/>'
            f'<g transform="rotate({angle} 16 16)"><rect x="10.5" y="15" width="11" height="2" rx="0.8" '
            f'fill="#121417"/><rect x="15" y="10.5" width="2" height="11" rx="0.8" fill="#121417"/></g>')


SCREW_DEFS = """
<radialGradient id="screwHead" cx="0.4" cy="0.35" r="0.75">
  <stop offset="0" stop-color="#8a919b"/><stop offset="0.6" stop-color="#50565e"/>
  <stop offset="1" stop-color="#2b2f34"/>
</radialGradient>
"""


def lamp(lit):
    if lit:
        return ('<circle cx="16" cy="16" r="13" fill="url(#halo)"/>'
                f'<circle cx="16" cy="16" r="6" fill="url(#ledOn)" stroke="{BEZEL}" stroke-width="1"/>'
                '<ellipse cx="14.3" cy="13.8" rx="2" ry="1.3" fill="#ffffff" opacity="0.75"/>')
    return (f'<circle cx="16" cy="16" r="6" fill="url(#ledOff)" stroke="{BEZEL}" stroke-width="1"/>'
            '<ellipse cx="14.3" cy="13.8" rx="2" ry="1.3" fill="#ffffff" opacity="0.18"/>')


def handle(selected):
    if selected:
        return ('<circle cx="16" cy="16" r="15" fill="url(#halo)"/>'
                f'<circle cx="16" cy="16" r="7.5" fill="#2a2212" stroke="{AMBER}" stroke-width="2.2"/>'
                f'<circle cx="16" cy="16" r="3.4" fill="{AMBER}" filter="url(#softGlow)"/>')
    return ('<g filter="url(#shadow)">'
            f'<circle cx="16" cy="16" r="7.5" fill="#1c1f24" fill-opacity="0.85" stroke="#f0f0f0" stroke-width="2"/>'
            '<circle cx="16" cy="16" r="2.6" fill="#f0f0f0"/></g>')


def idle_handle(hover):
    if hover:
        return ('<circle cx="16" cy="16" r="15" fill="url(#halo)" opacity="0.7"/>'
                f'<circle cx="16" cy="16" r="7.5" fill="none" stroke="{AMBER}" stroke-width="1.6" '
                'stroke-dasharray="3 2.2"/>')
    return (f'<circle cx="16" cy="16" r="7.5" fill="#1c1f24" fill-opacity="0.6" stroke="{LEGEND_DIM}" '
            'stroke-width="1.6" stroke-dasharray="3 2.2"/>')


def solo_handle(lit):
    colour = AMBER if lit else "#f0f0f0"
    halo = '<circle cx="16" cy="16" r="15" fill="url(#halo)"/>' if lit else ""
    return (halo + '<g filter="url(#shadow)">'
            f'<circle cx="16" cy="16" r="9.5" fill="#1c1f24" fill-opacity="0.9" stroke="{colour}" stroke-width="2"/>'
            f'{headphones_symbol(16, 15, colour, 0.72)}</g>')


def button(symbol, lit):
    colour = AMBER if lit else LEGEND
    glow = ' filter="url(#softGlow)"' if lit else ""
    return bezel(1, 1, 30, 30, 5, lit) + f'<g{glow}>{symbol(colour)}</g>'


def wordmark(text, size, colour, spacing):
    return (f'<text x="{64 + spacing / 2}" y="{16 + size * 0.36:.1f}" text-anchor="middle" font-family="{LOGO_FONT}" '
            f'font-size="{size}" letter-spacing="{spacing}" fill="{colour}">{text}</text>')


def plate(width, height):
    return (f'<rect x="0.5" y="0.5" width="{width - 1}" height="{height - 1}" rx="4" fill="url(#recess)" '
            f'stroke="{BEZEL}"/>'
            f'<path d="M4 {height - 1.5} H{width - 4}" stroke="{HIGHLIGHT}" stroke-opacity="0.1"/>'
            f'<path d="M4 1.5 H{width - 4}" stroke="#000" stroke-opacity="0.6"/>')


FRAME_PIECES = {
    150: (32, 64, 2, lambda: frames([corner_bracket(False), corner_bracket(True)], 32)),
    151: (32, 64, 2, lambda: frames([screw(45), screw(0)], 32)),
    152: (32, 64, 2, lambda: frames([lamp(False), lamp(True)], 32)),
    153: (128, 32, 1, lambda: wordmark("VELMORAN", 15, LEGEND, 2.2)
          + f'<path d="M12 27.5 H116" stroke="{AMBER}" stroke-width="1.2" stroke-opacity="0.9"/>'),
    154: (32, 32, 1, lambda: bezel(1, 1, 30, 30, 6) + f'<g filter="url(#glow)">{emblem_curve(16, 15, AMBER)}</g>'),
    155: (32, 64, 2, lambda: frames([handle(False), handle(True)], 32)),
    156: (32, 64, 2, lambda: frames([idle_handle(False), idle_handle(True)], 32)),
    157: (256, 32, 1, lambda: plate(256, 32)
          + f'<rect x="5" y="10" width="2.5" height="12" rx="1" fill="{AMBER}" fill-opacity="0.85"/>'),
    158: (32, 64, 2, lambda: frames([solo_handle(False), solo_handle(True)], 32)),
    159: (128, 32, 1, lambda: wordmark("VARNHOLT", 10, LEGEND_DIM, 3.2)
          + f'<path d="M6 16 H20 M108 16 H122" stroke="{LEGEND_FAINT}" stroke-width="1"/>'),
    160: (32, 96, 3, lambda: frames([
        button(lambda c: f'<text x="16" y="20.5" text-anchor="middle" font-family="Play" font-weight="bold" '
                         f'font-size="11" fill="{c}">L R</text>', False),
        button(lambda c: f'<text x="16" y="20.5" text-anchor="middle" font-family="Play" font-weight="bold" '
                         f'font-size="11" fill="{c}">L<tspan fill="{LEGEND_FAINT}"> R</tspan></text>', True),
        button(lambda c: f'<text x="16" y="20.5" text-anchor="middle" font-family="Play" font-weight="bold" '
                         f'font-size="11" fill="{LEGEND_FAINT}">L <tspan fill="{c}">R</tspan></text>', True)], 32)),
    161: (32, 64, 2, lambda: frames([button(lambda c: polarity_symbol(16, 16, c), lit) for lit in (False, True)], 32)),
    162: (32, 64, 2, lambda: frames([button(lambda c: emblem_curve(16, 15, c, 2.2, 0.85), lit)
                                     for lit in (False, True)], 32)),
    163: (32, 64, 2, lambda: frames([button(lambda c: headphones_symbol(16, 14.5, c, 0.95), lit)
                                     for lit in (False, True)], 32)),
    164: (32, 64, 2, lambda: frames([button(lambda c: info_symbol(16, 16, c), lit) for lit in (False, True)], 32)),
    165: (32, 160, 5, lambda: frames([
        button(lambda c: padlock_symbol(16, 17, c, open_shackle=True), False),
        button(lambda c: padlock_symbol(16, 17, c) + f'<path d="M12 27 H20" {stroke_style(c, 1.5)}/>', True),
        button(lambda c: padlock_symbol(16, 15, c, scale=0.85)
               + f'<path d="M9 26.5 H23 M11 24.5 L9 26.5 L11 28.5 M21 24.5 L23 26.5 L21 28.5" '
               f'{stroke_style(c, 1.3)}/>', True),
        button(lambda c: padlock_symbol(13, 16, c, scale=0.85)
               + f'<path d="M24 8 V24 M22 10 L24 8 L26 10 M22 22 L24 24 L26 22" {stroke_style(c, 1.3)}/>', True),
        button(lambda c: padlock_symbol(16, 17, c), False)], 32)),
}

# ---------------------------------------------------------------------------------------------
# Software images for the panels and message boxes that are composed in memory.


def message_button(pressed):
    if pressed:
        return (f'<rect x="0.5" y="0.5" width="23" height="23" rx="5" fill="url(#recess)" stroke="{AMBER}" '
                'stroke-opacity="0.8"/>')
    return bezel(0, 0, 24, 24, 5)


def warning_sign(cx, cy, r):
    return (f'<path d="M{cx} {cy - r} L{cx + r * 1.05} {cy + r * 0.8} H{cx - r * 1.05} Z" fill="{ALERT}" '
            f'stroke="{ALERT}" stroke-width="{r * 0.25:.2f}" stroke-linejoin="round"/>'
            f'<path d="M{cx} {cy - r * 0.35} V{cy + r * 0.25}" {stroke_style("#1a1406", r * 0.2)}/>'
            f'<circle cx="{cx}" cy="{cy + r * 0.55}" r="{r * 0.11:.2f}" fill="#1a1406"/>')


def error_sign(cx, cy, r):
    return (f'<circle cx="{cx}" cy="{cy}" r="{r}" fill="{ERROR}"/>'
            f'<path d="M{cx - r * 0.38} {cy - r * 0.38} L{cx + r * 0.38} {cy + r * 0.38} '
            f'M{cx + r * 0.38} {cy - r * 0.38} L{cx - r * 0.38} {cy + r * 0.38}" {stroke_style("#ffffff", r * 0.2)}/>')


def info_sign(cx, cy, r):
    return (f'<circle cx="{cx}" cy="{cy}" r="{r}" fill="{INFO}"/>'
            f'<circle cx="{cx}" cy="{cy - r * 0.45}" r="{r * 0.13:.2f}" fill="#ffffff"/>'
            f'<path d="M{cx} {cy - r * 0.1} V{cy + r * 0.5}" {stroke_style("#ffffff", r * 0.2)}/>')


def question_sign(cx, cy, r):
    return (f'<circle cx="{cx}" cy="{cy}" r="{r}" fill="#5b626c"/>'
            f'<path d="M{cx - r * 0.32} {cy - r * 0.3} A{r * 0.34} {r * 0.34} 0 1 1 {cx + r * 0.05} {cy + r * 0.08} '
            f'V{cy + r * 0.22}" {stroke_style("#ffffff", r * 0.19)}/>'
            f'<circle cx="{cx}" cy="{cy + r * 0.52}" r="{r * 0.12:.2f}" fill="#ffffff"/>')


SOFTWARE_IMAGES = {
    250: (32, 256, 1, lambda: '<rect width="32" height="256" fill="url(#panel)"/>'
          f'<rect y="0" width="32" height="2" fill="{AMBER}"/>'
          f'<rect y="2" width="32" height="1" fill="{HIGHLIGHT}" fill-opacity="0.12"/>'
          '<rect y="255" width="32" height="1" fill="#000" fill-opacity="0.6"/>'),
    251: (24, 48, 1, lambda: frames([message_button(False), message_button(True)], 24)),
    252: (24, 48, 1, lambda: frames([warning_sign(12, 12.5, 9.5), error_sign(12, 12, 10)], 24)),
    253: (24, 48, 1, lambda: frames([info_sign(12, 12, 10), question_sign(12, 12, 10)], 24)),
}

# ---------------------------------------------------------------------------------------------


def _switch_entry(image_id):
    symbol, legends = SWITCHES[image_id]
    return (64, 86, 2, lambda: switch(symbol, legends))


def _icon_entry(image_id):
    return (16, 16, 1, lambda: ICON_DRAWINGS[image_id])


IMAGES = {}
IMAGES.update({image_id: _switch_entry(image_id) for image_id in SWITCHES})
IMAGES.update({image_id: _icon_entry(image_id) for image_id in ICON_DRAWINGS})
IMAGES.update(FRAME_PIECES)
IMAGES.update(SOFTWARE_IMAGES)

EXTRA_DEFS = SCREW_DEFS

# Icon groups: the window icon (the emblem) and the three message-box icons.
ICONS = {
    200: (32, lambda: f'<rect x="0.5" y="0.5" width="31" height="31" rx="7" fill="url(#face)" stroke="{BEZEL}"/>'
         f'<g filter="url(#glow)">{emblem_curve(16, 15.5, AMBER, 3.0)}</g>'),
    260: (24, lambda: info_sign(12, 12, 11)),
    261: (24, lambda: warning_sign(12, 13, 10.5)),
    262: (24, lambda: error_sign(12, 12, 11)),
}
ICON_SIZES = (16, 32, 48, 256)
