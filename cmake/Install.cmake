# Installation; filled below.
