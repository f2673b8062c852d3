"""Colours, shared shapes and the SVG frame that every Velmoran image is drawn with.

The look: dark machined panels, soft bevels, light-grey legends and one amber accent
(255, 176, 0) that marks everything that is switched on or selected.
"""

AMBER = "#ffb000"
AMBER_DEEP = "#c77700"
AMBER_PALE = "#ffd77a"
LEGEND = "#d6dae0"
LEGEND_DIM = "#7d848f"
LEGEND_FAINT = "#4b515a"
FACE_TOP = "#30353c"
FACE_BOTTOM = "#1c1f24"
FACE_LIT_TOP = "#3a3833"
FACE_LIT_BOTTOM = "#221f1a"
BEZEL = "#0a0b0d"
HIGHLIGHT = "#ffffff"
PANEL_TOP = "#2a2e34"
PANEL_BOTTOM = "#16181b"
ALERT = "#ffb000"
ERROR = "#e5484d"
INFO = "#4aa3ff"

LABEL_FONT = "Play"
LOGO_FONT = "Routed Gothic Wide"


def svg(width, height, body, defs=""):
    """A complete SVG document of width x height pixels."""
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}">\n<defs>\n{defs}\n</defs>\n{body}\n</svg>\n'
    )


def frames(frame_bodies, frame_height):
    """Stacks frame drawings vertically, frame 0 at the top."""
    return "\n".join(
        f'<g transform="translate(0 {index * frame_height})">{body}</g>'
        for index, body in enumerate(frame_bodies)
    )


def common_defs():
    """Gradients and filters that the shapes below refer to."""
    return f"""
<linearGradient id="face" x1="0" y1="0" x2="0" y2="1">
  <stop offset="0" stop-color="{FACE_TOP}"/><stop offset="1" stop-color="{FACE_BOTTOM}"/>
</linearGradient>
<linearGradient id="faceLit" x1="0" y1="0" x2="0" y2="1">
  <stop offset="0" stop-color="{FACE_LIT_TOP}"/><stop offset="1" stop-color="{FACE_LIT_BOTTOM}"/>
</linearGradient>
<linearGradient id="panel" x1="0" y1="0" x2="0" y2="1">
  <stop offset="0" stop-color="{PANEL_TOP}"/><stop offset="1" stop-color="{PANEL_BOTTOM}"/>
</linearGradient>
<linearGradient id="recess" x1="0" y1="0" x2="0" y2="1">
  <stop offset="0" stop-color="#0c0d0f"/><stop offset="1" stop-color="#1a1d21"/>
</linearGradient>
<linearGradient id="sheen" x1="0" y1="0" x2="0" y2="1">
  <stop offset="0" stop-color="{HIGHLIGHT}" stop-opacity="0.16"/>
  <stop offset="0.5" stop-color="{HIGHLIGHT}" stop-opacity="0.02"/>
  <stop offset="1" stop-color="{HIGHLIGHT}" stop-opacity="0"/>
</linearGradient>
<radialGradient id="ledOn" cx="0.5" cy="0.45" r="0.55">
  <stop offset="0" stop-color="#fff4cf"/><stop offset="0.35" stop-color="{AMBER_PALE}"/>
  <stop offset="0.8" stop-color="{AMBER}"/><stop offset="1" stop-color="{AMBER_DEEP}"/>
</radialGradient>
<radialGradient id="ledOff" cx="0.5" cy="0.4" r="0.6">
  <stop offset="0" stop-color="#4a3d26"/><stop offset="1" stop-color="#1e1a12"/>
</radialGradient>
<radialGradient id="halo" cx="0.5" cy="0.5" r="0.5">
  <stop offset="0" stop-color="{AMBER}" stop-opacity="0.55"/>
  <stop offset="0.6" stop-color="{AMBER}" stop-opacity="0.18"/>
  <stop offset="1" stop-color="{AMBER}" stop-opacity="0"/>
</radialGradient>
<filter id="glow" x="-50%" y="-50%" width="200%" height="200%">
  <feGaussianBlur in="SourceGraphic" stdDeviation="1.4" result="blur"/>
  <feMerge><feMergeNode in="blur"/><feMergeNode in="SourceGraphic"/></feMerge>
</filter>
<filter id="softGlow" x="-50%" y="-50%" width="200%" height="200%">
  <feGaussianBlur in="SourceGraphic" stdDeviation="0.8" result="blur"/>
  <feMerge><feMergeNode in="blur"/><feMergeNode in="SourceGraphic"/></feMerge>
</filter>
<filter id="shadow" x="-30%" y="-30%" width="160%" height="160%">
  <feGaussianBlur in="SourceAlpha" stdDeviation="0.9"/>
  <feOffset dx="0" dy="1" result="offset"/>
  <feComponentTransfer><feFuncA type="linear" slope="0.7"/></feComponentTransfer>
  <feMerge><feMergeNode/><feMergeNode in="SourceGraphic"/></feMerge>
</filter>
"""


def bezel(x, y, width, height, radius, lit=False):
    """A raised button face with a dark rim, a top sheen and a one-pixel top highlight."""
    face = "faceLit" if lit else "face"
    return f"""
<rect x="{x + 0.5}" y="{y + 0.5}" width="{width - 1}" height="{height - 1}" rx="{radius}"
      fill="url(#{face})" stroke="{BEZEL}" stroke-width="1"/>
<rect x="{x + 1.5}" y="{y + 1.5}" width="{width - 3}" height="{(height - 3) * 0.55:.2f}" rx="{radius - 1}"
      fill="url(#sheen)"/>
<path d="M{x + radius + 1} {y + 1.5} H{x + width - radius - 1}" stroke="{HIGHLIGHT}" stroke-opacity="0.22"
      stroke-width="1"/>
"""


def led_bar(cx, y, width, lit):
    """A thin lamp across the top of a switch: amber and glowing when on, dark when off."""
    if lit:
        return (
            f'<rect x="{cx - width / 2}" y="{y}" width="{width}" height="3" rx="1.5" fill="{AMBER}" '
            f'filter="url(#glow)"/>'
            f'<rect x="{cx - width / 2 + 2}" y="{y + 0.6}" width="{width - 4}" height="1" rx="0.5" '
            f'fill="#fff1c4" opacity="0.8"/>'
        )
    return (
        f'<rect x="{cx - width / 2}" y="{y}" width="{width}" height="3" rx="1.5" fill="#2e2a22" '
        f'stroke="#000" stroke-opacity="0.5" stroke-width="0.5"/>'
    )


def label(cx, baseline, text, lit, size=8.0):
    """A small engraved legend, amber when its control is on."""
    colour = AMBER if lit else LEGEND_DIM
    return (
        # Letter spacing also follows the last letter: shift by half of it to stay centred.
        f'<text x="{cx + 0.3}" y="{baseline}" text-anchor="middle" font-family="{LABEL_FONT}" '
        f'font-weight="bold" font-size="{size}" letter-spacing="0.6" fill="{colour}">{text}</text>'
    )


def stroke_style(colour, width=1.6):
    return (
        f'fill="none" stroke="{colour}" stroke-width="{width}" stroke-linecap="round" '
        f'stroke-linejoin="round"'
    )
