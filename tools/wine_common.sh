# Sourced by the scripts that use Wine: where its 32-bit DLLs are kept.
kavrelCache=${KAVREL_CACHE:-${HOME:-/root}/.cache/kavrel}

wine_version() { dpkg-query -W -f='${Version}' libwine:amd64; }

# The 32-bit DLLs must be of the very version that is installed, so the version is in the path.
wine32_root() { echo "$kavrelCache/wine32-$(wine_version)"; }
wine32_folder() { echo "$(wine32_root)/usr/lib/i386-linux-gnu/wine/i386-windows"; }
