-- SPDX-License-Identifier: LicenseRef-Halyard
-- usage: ardour7-lua ardour_session.lua FOLDER MODE [NAME=VALUE...]
-- Opens the session in FOLDER, or creates it with a stereo track through the plug-in (MODE "create"); sets parameters
-- (0 to 1, by the name that the plug-in gives them); prints what the host sees of the plug-in as lines NAME=VALUE;
-- saves (MODE "create" or "save") or leaves the stored session as it is (MODE "look").
local folder, mode = arg[1], arg[2]
local session_name = "halyard"

AudioEngine:set_backend("None (Dummy)", "", "")

local function create()
    local session = assert(create_session(folder, session_name, 48000), "the session cannot be created")
    local plugin = ARDOUR.LuaAPI.new_plugin(session, "Halyard", ARDOUR.PluginType.LXVST, "")
    assert(not plugin:isnil(), "the host does not know the plug-in")
    local tracks = session:new_audio_track(2, 2, nil, 1, "sound", ARDOUR.PresentationInfo.max_order,
                                           ARDOUR.TrackMode.Normal, true)
    assert(tracks:front():add_processor_by_index(plugin, 0, nil, true) == 0, "the track does not take the plug-in")
    return session
end

local function plugin_of(session)
    local processor = session:route_by_name("sound"):nth_plugin(0)
    assert(not processor:isnil(), "the track has no plug-in")
    return processor
end

-- Result: parameter numbers by name.
local function parameter_numbers(plugin)
    local numbers = {}
    for number = 0, plugin:parameter_count() - 1 do
        numbers[plugin:parameter_label(number)] = number
    end
    return numbers
end

local function work()
    local session = mode == "create" and create() or assert(load_session(folder, session_name), "cannot be opened")
    local processor = plugin_of(session)
    local plugin = processor:to_insert():plugin(0)
    local numbers = parameter_numbers(plugin)

    for i = 3, #arg do
        local name, value = arg[i]:match("^(.-)=(.*)$")
        assert(numbers[name], "no parameter " .. name)
        assert(ARDOUR.LuaAPI.set_processor_param(processor, numbers[name], tonumber(value)), "refused: " .. arg[i])
    end
    sleep(1) -- Blocks go on running meanwhile, as they do for a user.

    print("name=" .. plugin:name())
    print("latency=" .. processor:signal_latency())
    for name, number in pairs(numbers) do
        print("parameter." .. name .. "=" .. ARDOUR.LuaAPI.get_processor_param(processor, number))
    end
    if mode ~= "look" then
        assert(session:save_state("") == 0, "the session cannot be saved")
    end
    close_session()
end

local is_good, message = pcall(work)
print(is_good and "done" or "failed: " .. tostring(message))
quit()
