mv disk/Music/Jazz away
mkdir disk/Music/Jazz
